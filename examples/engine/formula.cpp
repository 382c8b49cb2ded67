#include "formula.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace {

std::vector<std::string> NamesIn(const std::string& list) {
  std::vector<std::string> names;
  std::istringstream items(list);
  for (std::string name; std::getline(items, name, ',');) names.push_back(name);
  return names;
}

}  // namespace

Formula::Formula(const std::string& names, const std::string& equation) {
  const std::vector<std::string> list = NamesIn(names);
  arguments_.resize(list.size());
  try {
    for (std::size_t i = 0; i < list.size(); ++i) parser_.DefineVar(list[i], &arguments_[i]);
    parser_.SetExpr(equation);
    parser_.Eval();
  } catch (const mu::ParserError& fault) {
    throw std::runtime_error(equation + ": " + fault.GetMsg());
  }
}

double Formula::operator()(const std::vector<double>& arguments) {
  if (arguments.size() != arguments_.size()) {
    throw std::runtime_error(parser_.GetExpr() + ": wrong number of arguments");
  }
  std::copy(arguments.begin(), arguments.end(), arguments_.begin());
  return parser_.Eval();
}
