#include "bench/PeerRecord.h"

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>
#include <numeric>
#include <stdexcept>

namespace {

constexpr std::size_t kHead =
    kBlobSize - sizeof(PeerRecord::variables) - sizeof(PeerRecord::responses);

std::string VariableName(std::size_t i) {
  return "variable" + std::to_string(i + 1);
}

std::string ResponseName(std::size_t i) {
  return "response" + std::to_string(i + 1);
}

}  // namespace

PeerRecord PeerRecord::Made(int number, int edition) {
  PeerRecord record;
  record.number = number;
  for (std::size_t i = 0; i < kVariables; ++i) {
    record.variables[i] = 0.1 * number + static_cast<double>(i) + edition;
  }
  for (std::size_t i = 0; i < kResponses; ++i) {
    record.responses[i] = 0.3 * number + static_cast<double>(i) - 2 * edition;
  }
  return record;
}

double PeerRecord::Fingerprint() const {
  const double sum = std::accumulate(variables.begin(), variables.end(), double(number));
  return std::accumulate(responses.begin(), responses.end(), sum);
}

std::string ToBlob(const PeerRecord& record) {
  std::string blob(kBlobSize, '\0');
  std::memcpy(blob.data(), &record.number, sizeof record.number);
  std::memcpy(blob.data() + kHead, record.variables.data(), sizeof record.variables);
  std::memcpy(blob.data() + kHead + sizeof record.variables, record.responses.data(),
              sizeof record.responses);
  return blob;
}

PeerRecord FromBlob(const void* blob, std::size_t size) {
  if (size != kBlobSize) throw std::runtime_error("a blob of another size");
  const char* bytes = static_cast<const char*>(blob);
  PeerRecord record;
  std::memcpy(&record.number, bytes, sizeof record.number);
  std::memcpy(record.variables.data(), bytes + kHead, sizeof record.variables);
  std::memcpy(record.responses.data(), bytes + kHead + sizeof record.variables,
              sizeof record.responses);
  return record;
}

std::string ToJson(const PeerRecord& record) {
  nlohmann::json values;
  values["number"] = record.number;
  for (std::size_t i = 0; i < record.variables.size(); ++i) {
    values[VariableName(i)] = record.variables[i];
  }
  for (std::size_t i = 0; i < record.responses.size(); ++i) {
    values[ResponseName(i)] = record.responses[i];
  }
  return values.dump();
}

PeerRecord FromJson(const void* text, std::size_t size) {
  const char* characters = static_cast<const char*>(text);
  const nlohmann::json values = nlohmann::json::parse(characters, characters + size);
  PeerRecord record;
  record.number = values.at("number");
  for (std::size_t i = 0; i < record.variables.size(); ++i) {
    record.variables[i] = values.at(VariableName(i));
  }
  for (std::size_t i = 0; i < record.responses.size(); ++i) {
    record.responses[i] = values.at(ResponseName(i));
  }
  return record;
}
