#include "definition/DefinitionReport.h"

const char* kestdb::RandomParameterText(const vbINT32& parameter) {
  switch (parameter) {
    case -3:
      return "Probability of Failure";
    case -2:
      return "  Standard Deviation  ";
    case -1:
      return "      Mean Value      ";
    case 0:
      return "     1st Parameter    ";
    case 1:
      return "     2nd Parameter    ";
    case 2:
      return "     3rd Parameter    ";
    case 3:
      return "     4th Parameter    ";
    default:
      return "         ????         ";
  }
}

const char* kestdb::DistributionText(long distribution) {
  switch (distribution) {
    case 0:
      return "  Normal Distribution ";
    case 1:
      return " Uniform Distribution ";
    case 2:
      return "LogNormal Distribution";
    case 3:
      return " Weibull Distribution ";
    default:
      return "         ????         ";
  }
}

void kestdb::PrintHeading(std::FILE* stream, const char* title,
                          std::initializer_list<const char*> lines) {
  PrintBar(stream, '-');
  std::fprintf(stream, "%s", title);
  PrintBar(stream, '-');
  for (const char* line : lines) std::fprintf(stream, "%s", line);
}

namespace {

long At(const std::vector<vbINT32>& values, std::size_t i, long otherwise) {
  return i < values.size() ? values[i].PackBits() : otherwise;
}

}  // namespace

std::string kestdb::ArgumentText(bool linked, const std::vector<vbINT32>& arguments,
                                 const std::vector<vbINT32>& indexes,
                                 const std::vector<vbINT32>& lengths) {
  std::string text;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) text += ", ";
    text += std::to_string(arguments[i].PackBits());
    const long index = At(indexes, i, 0);
    const long length = linked ? 1 : At(lengths, i, 1);  // a link takes single elements
    if (index >= 1 || length >= 2) {
      text += "(Idx=" + std::to_string(index) + ",Len=" + std::to_string(length) + ")";
    }
  }
  return text;
}
