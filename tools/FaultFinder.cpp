#include "FaultFinder.h"

#include <kestdb.h>

#include <string_view>

#include "Ending.h"

namespace {

constexpr std::string_view kStatus = "Status       = ";  // of a block

/// Errors, and those warnings that tell of objects or blocks. An old file or an empty one has no
/// fault.
bool TellsOfFault(const std::string& line) {
  if (line.starts_with("ERROR: ")) return true;
  return line.starts_with("WARNING: Found ") || line.starts_with("WARNING: Could not read ") ||
         line.starts_with("WARNING: Current checksum ");
}

}  // namespace

FaultFinder::FaultFinder(std::FILE* out)
    : out_(out),
      stream_(fopencookie(this, "w", {nullptr, &FaultFinder::Take, nullptr, nullptr})),
      before_(fKLog) {
  if (stream_ == nullptr) throw Refusal(kNotOpened, "no stream for the report");
  fKLog = stream_;
}

FaultFinder::~FaultFinder() {
  fKLog = before_;
  std::fclose(stream_);
}

bool FaultFinder::HasFaults() const {
  std::fflush(stream_);
  return hasFaults_;
}

ssize_t FaultFinder::Take(void* self, const char* text, std::size_t size) {
  auto& finder = *static_cast<FaultFinder*>(self);
  for (std::size_t i = 0; i < size; ++i) {
    if (text[i] == '\n') {
      finder.EndLine();
    } else {
      finder.line_ += text[i];
    }
  }
  return static_cast<ssize_t>(std::fwrite(text, 1, size, finder.out_));
}

/// What a free block holds is left over, and needs no checksum.
void FaultFinder::EndLine() {
  if (line_.starts_with(kStatus)) TakeStatus();
  const bool ofChecksum = line_ == "ERROR: Object checksum does not match!";
  if (TellsOfFault(line_) && !(ofChecksum && isFree_)) hasFaults_ = true;
  line_.clear();
}

void FaultFinder::TakeStatus() {
  isFree_ = line_.ends_with(vbDeletedBlock) || line_.ends_with(vbRemovedBlock);
  if (!isFree_ && !line_.ends_with(vbNormalBlock)) hasFaults_ = true;
}
