#include "Export/TCSource.h"

#include <utility>

#include "Shared/NumberFormat.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

constexpr std::size_t kLineWidth = 80;  // of a table, from where on it goes to the next line

// A function that several statements share; "$" stands for the name of the file's function and "_".
struct TFunction {
  std::string_view what;
  std::string_view text;
};

constexpr TFunction kFunctions[] = {
    {"sigmoid",
     "static double $sigmoid(double x) {\n"
     "  return x < -500.0 ? 1e-300 : 1.0 / (1.0 + exp(-x));\n"
     "}\n"},
    {"add",
     "/* sums += weights values, with a row of weights for each sum. */\n"
     "static void $add(int rows, int columns, const double *weights, const double *values,\n"
     "                 double *sums) {\n"
     "  int i, k;\n"
     "  for (i = 0; i < rows; ++i) {\n"
     "    for (k = 0; k < columns; ++k) sums[i] += *weights++ * values[k];\n"
     "  }\n"
     "}\n"},
    {"add_some",
     "/* The same where each row has some of the weights: it ends before ends[i], and weights[k]\n"
     "   belongs to values[from[k]]. */\n"
     "static void $add_some(int rows, const int *ends, const int *from, const double *weights,\n"
     "                      const double *values, double *sums) {\n"
     "  int i, k = 0;\n"
     "  for (i = 0; i < rows; ++i) {\n"
     "    for (; k < ends[i]; ++k) sums[i] += weights[k] * values[from[k]];\n"
     "  }\n"
     "}\n"},
    {"membership",
     "/* The membership of x in term k of n: 1 at its centre, 0 from the neighbouring centres on;\n"
     "   the outermost terms stay at 1 towards their side. */\n"
     "static double $membership(const double *centres, int k, int n, double x) {\n"
     "  const double c = centres[k];\n"
     "  if (k == 0 && x <= c) return 1.0;\n"
     "  if (k == n - 1 && x >= c) return 1.0;\n"
     "  if (k < n - 1 && c <= x && x < centres[k + 1]) return 1.0 - (x - c) / (centres[k + 1] - "
     "c);\n"
     "  if (k > 0 && x <= c && centres[k - 1] < x) return 1.0 - (c - x) / (c - centres[k - 1]);\n"
     "  return 0.0;\n"
     "}\n"},
    {"fuzzify",
     "static void $fuzzify(int variables, const int *terms, const double *centres,\n"
     "                     const double *values, double *memberships) {\n"
     "  int v, k;\n"
     "  for (v = 0; v < variables; ++v) {\n"
     "    for (k = 0; k < terms[v]; ++k) {\n"
     "      *memberships++ = $membership(centres, k, terms[v], values[v]);\n"
     "    }\n"
     "    centres += terms[v];\n"
     "  }\n"
     "}\n"},
    {"defuzzify",
     "/* The centre of gravity of the terms of each variable; rounding must not lift it above 1. "
     "*/\n"
     "static void $defuzzify(int variables, const int *terms, const double *centres,\n"
     "                       const double *degrees, double *values) {\n"
     "  int v, k;\n"
     "  for (v = 0; v < variables; ++v) {\n"
     "    double sum = 0.0, moment = 0.0;\n"
     "    for (k = 0; k < terms[v]; ++k) {\n"
     "      moment += *degrees * *centres++;\n"
     "      sum += *degrees++;\n"
     "    }\n"
     "    values[v] = moment == 0.0 || sum == 0.0 ? 0.0 : moment / sum;\n"
     "    if (values[v] > 1.0 && values[v] <= 1.0 + terms[v] * 2.22e-16) values[v] = 1.0;\n"
     "  }\n"
     "}\n"},
};

void Append(std::string& text, double value) {
  text += CNumber(value);
}

void Append(std::string& text, int value) {
  text += std::to_string(value);
}

}  // namespace

std::string CNumber(double value) {
  std::string text;
  AppendShortest(text, value);
  if (text.find_first_of(".e") == text.npos) text += ".0";
  return text;
}

TCSource::TCSource(FileTools::Writer& out, std::string name) : out_(out), name_(std::move(name)) {}

void TCSource::WriteComment(std::string_view text) {
  out_.WriteText("/*\n");
  while (!text.empty()) {
    const std::size_t end = text.find('\n') + 1;
    out_.WriteText(end == 1 ? " *" : " * ");
    out_.WriteText(text.substr(0, end));
    text.remove_prefix(end);
  }
  out_.WriteText(" */\n\n#include <math.h>\n\n");
}

template <typename TValue>
std::string TCSource::WriteTable(const std::string& what, std::span<const TValue> values,
                                 std::string_view type) {
  std::string table = name_ + '_' + what;
  std::string line = "static const ";
  line.append(type).append(" ").append(table);
  line += '[' + std::to_string(values.size()) + "] = {";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) line += ',';
    if (i == 0 || line.size() > kLineWidth) {
      line += "\n   ";
      out_.WriteText(line);
      line.clear();
    }
    line += ' ';
    Append(line, values[i]);
  }
  line += "};\n\n";
  out_.WriteText(line);
  return table;
}

std::string TCSource::Table(const std::string& what, std::span<const double> values) {
  return WriteTable(what, values, "double");
}

std::string TCSource::Table(const std::string& what, std::span<const int> values) {
  return WriteTable(what, values, "int");
}

std::string TCSource::Function(std::string_view what) {
  functions_.insert(what);
  return name_ + '_' + std::string(what);
}

void TCSource::Definition(std::string_view text) {
  definitions_.append(text) += '\n';
}

void TCSource::Local(const std::string& name, std::size_t size) {
  locals_ += "  double " + name + '[' + std::to_string(size) + "];\n";
}

void TCSource::Statement(const std::string& text) {
  statements_ += "  " + text + ";\n";
}

void TCSource::Loop(std::size_t first, std::size_t last, const std::string& assignment) {
  has_loop_ = true;
  Statement("for (i = " + std::to_string(first) + "; i < " + std::to_string(last) + "; ++i) " +
            assignment);
}

void TCSource::Finish() {
  for (const TFunction& function : kFunctions) {
    if (!functions_.contains(function.what)) continue;
    std::string text(function.text);
    for (std::size_t at = 0; (at = text.find('$', at)) != text.npos;) {
      text.replace(at, 1, name_ + '_');
    }
    out_.WriteText(text + '\n');
  }
  out_.WriteText(definitions_);
  out_.WriteText("void " + name_ + "(const double *input, double *output) {\n" + locals_ +
                 (has_loop_ ? "  int i;\n\n" : "\n") + statements_ + "}\n");
}

}  // namespace kiln
