#include "task/TableReport.h"

#include <utility>

#include "environment/Utilities.h"

namespace {

template <class Split>
std::vector<std::string> Pieces(std::string text, Split split) {
  std::vector<std::string> pieces(1);
  if (!split(text, pieces.back())) return pieces;
  std::string piece;
  while (!text.empty() && split(text, piece)) pieces.push_back(piece);
  return pieces;
}

}  // namespace

std::vector<std::string> kestdb::NamePieces(std::string name, int columns) {
  return Pieces(std::move(name), [columns](std::string& rest, std::string& piece) {
    return CKUtil::SplitName(rest, columns, piece);
  });
}

std::vector<std::string> kestdb::TextPieces(std::string text, int columns) {
  return Pieces(std::move(text), [columns](std::string& rest, std::string& piece) {
    return COSUtil::SplitLine(rest, columns, piece);
  });
}

void kestdb::PrintTableHead(std::FILE* stream, const char* title,
                            std::initializer_list<const char*> columns) {
  std::fprintf(stream, "%s", title);
  PrintBar(stream, '=');
  for (const char* line : columns) std::fprintf(stream, "%s", line);
}
