#include "store/report.h"

#include "environment/Utilities.h"

void kestdb::PrintBar(std::FILE* stream, char sign, int width) {
  std::fprintf(stream, "%s\n", std::string(static_cast<std::size_t>(width), sign).c_str());
}

void kestdb::PrintEnd(std::FILE* stream) {
  PrintBar(stream, '=');
  std::fprintf(stream, "\n");
  std::fflush(nullptr);
}

void kestdb::PrintCut(std::FILE* stream, std::string text, int columns, int indent) {
  std::string piece;
  COSUtil::SplitLine(text, columns, piece);
  std::fprintf(stream, "%s\n", piece.c_str());
  while (!text.empty() && COSUtil::SplitLine(text, columns, piece)) {
    std::fprintf(stream, "%*s%s\n", indent, "", piece.c_str());
  }
}
