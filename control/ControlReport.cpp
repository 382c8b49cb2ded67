#include "control/ControlReport.h"

const char* kestdb::FlagWord(const vbINT32& flag) {
  return flag != 0 ? "Yes" : "No";
}

const char* kestdb::WordFor(const vbINT32& code, std::initializer_list<const char*> words) {
  if (code < 0 || code >= words.size()) return "Unknown";
  return words.begin()[long{code}];
}

const char* kestdb::EfficiencyWord(const vbINT32& skip) {
  return WordFor(skip, {"Most Accurate", "Accurate", "Mixed", "Efficient", "Most Efficient"});
}

const char* kestdb::OrderWord(const vbINT32& order) {
  return WordFor(order,
                 {"Linear Terms Only", "Linear Terms and Interaction Terms",
                  "Linear and Quadratic Terms", "Full Quadratic", "Forward Stepwise Regression"});
}

const char* kestdb::DesignWord(const vbINT32& design) {
  return WordFor(design,
                 {"Factorial", "Composite", "Box-Behnken", "Plackett-Burman", "Notz", "Koshal",
                  "Rechtschaffner", "Hybrid", "Three-Level Taguchi Orthogonal Arrays", "Simplex",
                  "Random", "User Defined Design Points", "Latin (Std)", "Latin (Opt)"});
}

const char* kestdb::InitialDesignWord(const vbINT32& design) {
  switch (design) {
    case 5:
      return "Linear Koshal";
    case 9:
      return "Simplex";
    case 10:
      return "Linear Random";
    case 11:
      return "User Defined";
    case 12:
      return "Latin (Std)";
    case 13:
      return "Latin (Opt)";
    default:
      return "Unknown";
  }
}

const char* kestdb::DesignTaskWord(const vbINT32& task) {
  return WordFor(
      task, {"Points Only", "Points and Responses", "Points, Responses, and Approximation Models"});
}

const char* kestdb::ModelWord(const vbINT32& model) {
  return WordFor(model, {"Linear", "Linear with Interactions", "Linear and Quadratic",
                         "Full Quadratic", "Mixed Forward Regression"});
}

const char* kestdb::CrossOverWord(const vbINT32& type) {
  return WordFor(type, {"Uniform", "Two Point"});
}

const char* kestdb::RandomMethodWord(const vbINT32& method) {
  return WordFor(
      method,
      {"Direct Monte-Carlo Sampling", "Latin Hypercube Sampling", "Mean Value Approximation Method",
       "Approximate Direct Monte-Carlo Sampling", "Approximate Latin Hypercube Sampling"});
}

void kestdb::PrintPValues(std::FILE* stream, double enter, double remove) {
  std::fprintf(stream, "      P-value of Terms to Enter into the Model: %g\n", enter);
  std::fprintf(stream, " P-value of Terms to be Removed from the Model: %g\n", remove);
}
