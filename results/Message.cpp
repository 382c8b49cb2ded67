#include "results/Message.h"

#include <algorithm>

#include "environment/Utilities.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/pod.h"
#include "store/podcheck.h"
#include "store/report.h"

template <>
struct kestdb::ClassOf<CMessage> {
  static constexpr vbINT32 Index = CMessage::m_nMESSAGE_INDX;
  static constexpr vbINT32 Version = CMessage::m_nMESSAGE_VER;
  static constexpr std::array Keys{&CMessage::m_nID};
  static constexpr auto Fields = [](auto& file, auto& messages) {
    file(messages.m_nID, messages.m_Messages);
  };
};

template class vbPersistentClass<CMessage>;

void CMessage::SetDefaultAttributes() {
  Copy(CMessage(Database()));
}

namespace {

int CountBeginningWith(const std::vector<std::string>& messages, const char* word) {
  return static_cast<int>(
      std::count_if(messages.begin(), messages.end(),
                    [word](const std::string& message) { return message.starts_with(word); }));
}

}  // namespace

int CMessage::GetNumErrors() const {
  return CountBeginningWith(m_Messages, "ERROR");
}

int CMessage::GetNumWarnings() const {
  return CountBeginningWith(m_Messages, "WARN");
}

int CMessage::GetNumExceptions() const {
  return CountBeginningWith(m_Messages, "EXCEPTION");
}

void CMessage::RemoveAll() try {
  const CLock lock(Database(), 0);
  m_Messages.clear();
  PutObject();
}
LOG_AND_RETHROW

void CMessage::Dump(POD* pod, std::FILE* stream, int taskID) try {
  // Kept: here a missing file is told before missing indexing.
  if (pod != nullptr && (pod->DataFile() == nullptr || pod->IndexFile() == nullptr)) {
    Throw<CNullPtr>();
  }
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  CMessage messages(pod);
  messages.m_nID = taskID;
  if (!messages.GetObject()) return;
  std::fprintf(stream, "                         MESSAGE SUMMARY (Task ID: %d)\n", taskID);
  kestdb::PrintBar(stream, '=');
  std::string line;
  for (std::string message : messages.m_Messages) {
    while (!message.empty() && COSUtil::SplitLine(message, 80, line)) {
      std::fprintf(stream, "%s\n", line.c_str());
    }
  }
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream, "\n");
}
LOG_AND_RETHROW
