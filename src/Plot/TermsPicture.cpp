#include "Plot/TermsPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "Membership/TLShoulderTriangularMF.h"
#include "Membership/TRShoulderTriangularMF.h"
#include "Membership/TTriangularMF.h"
#include "Plot/Legible.h"
#include "Plot/PanelLayout.h"

namespace kiln {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Where a function has its corners and steps; between them it is straight.
std::vector<double> CornersOf(const TBasicMF& mf) {
  std::vector<double> corners;
  if (const auto* bounded = dynamic_cast<const TBoundedMF*>(&mf)) {
    corners = {bounded->LeftBound(), bounded->RightBound()};
  }
  if (const auto* centred = dynamic_cast<const TCentredMF*>(&mf)) corners = {centred->Centre()};
  if (const auto* triangle = dynamic_cast<const TTriangularMF*>(&mf)) {
    corners.push_back(triangle->Centre());
  }
  if (const auto* left = dynamic_cast<const TLShoulderTriangularMF*>(&mf)) {
    corners.push_back(left->RightBound());
  }
  if (const auto* right = dynamic_cast<const TRShoulderTriangularMF*>(&mf)) {
    corners.push_back(right->LeftBound());
  }
  std::erase_if(corners, [](double corner) { return !std::isfinite(corner); });
  return corners;
}

// The range of a variable, wide enough for all corners.
TAxis RangeOf(const TBasicMFSet& set) {
  double lower = set.LowerBound();
  double upper = set.UpperBound();
  for (int i = 0; i < set.NumberOfMF(); ++i) {
    if (!set.GetMF(i)) continue;
    for (const double corner : CornersOf(*set.GetMF(i))) {
      lower = std::min(lower, corner);
      upper = std::max(upper, corner);
    }
  }
  if (!(lower < upper)) upper = lower + 1.0;
  return {"", lower, upper, false, {}};
}

// Takes off both ends of a curve what lies at 0, but for the last point of each.
void CutZeros(std::vector<TPoint>& curve) {
  const auto is_above = [](const TPoint& point) { return point.y > 0.0; };
  const auto first = std::ranges::find_if(curve, is_above);
  const auto last = std::find_if(curve.rbegin(), curve.rend(), is_above).base();
  if (first == curve.end()) return;
  if (curve.end() - last > 1) curve.erase(last + 1, curve.end());
  if (first - curve.begin() > 1) curve.erase(curve.begin(), first - 1);
}

std::vector<TPoint> CurveOf(const TBasicMF& mf, const TAxis& range) {
  std::vector<double> places = {range.lower, range.upper};
  for (const double corner : CornersOf(mf)) {
    for (const double place :
         {std::nextafter(corner, -kInfinity), corner, std::nextafter(corner, kInfinity)}) {
      if (range.lower < place && place < range.upper) places.push_back(place);
    }
  }
  std::ranges::sort(places);
  std::vector<TPoint> curve;
  for (const double place : places) {
    const double degree = mf.GetMembership(place);
    if (std::isfinite(degree)) curve.push_back({place, degree});
  }
  CutZeros(curve);
  return curve;
}

// The middle of where a curve is highest.
double Top(const std::vector<TPoint>& curve) {
  const double most = std::ranges::max_element(curve, {}, &TPoint::y)->y;
  double first = kInfinity;
  double last = -kInfinity;
  for (const TPoint& point : curve) {
    constexpr double kRounding = 1e-9;
    if (point.y < most - kRounding) continue;
    first = std::min(first, point.x);
    last = std::max(last, point.x);
  }
  return (first + last) / 2.0;
}

TPanel PanelOf(const TBasicMFSet& set, const std::string& fallback) {
  TPanel panel;
  panel.title = set.Name().value_or(fallback);
  panel.x = RangeOf(set);
  panel.y = {"", 0.0, 1.05, false, {}};
  for (int i = 0; i < set.NumberOfMF(); ++i) {
    const TBasicMF* const mf = set.GetMF(i);
    if (!mf) continue;
    TSeries curve = {"", TStroke::kLine, panel.series.size(), CurveOf(*mf, panel.x)};
    if (curve.points.empty()) continue;
    panel.heads.push_back({Top(curve.points), mf->Name().value_or(std::to_string(i)), false});
    panel.series.push_back(std::move(curve));
  }
  return panel;
}

void AddPanels(TPicture& picture, const TMFSetList& variables, const char* side) {
  for (int v = 0; v < variables.Count(); ++v) {
    const TBasicMFSet* const set = variables.GetMFSet(v);
    if (!set) continue;
    TPanel panel = PanelOf(*set, side + std::to_string(v));
    if (!panel.series.empty()) picture.panels.push_back(std::move(panel));
  }
}

// --- Rules -----------------------------------------------------------------------------------

// A term as a row of a table of rules.
struct TTermRow {
  bool is_output;
  int variable;
  int mf;

  auto Key() const { return std::tuple(is_output, variable, mf); }
};

struct TNamedTerm {
  TTermRow term;
  std::size_t rule;
  double degree;
};

void AddAtom(const TRuleAtom& atom, bool is_output, bool is_negated, std::size_t rule,
             std::vector<TNamedTerm>& terms) {
  const bool is_turned = atom.negated != is_negated;
  terms.push_back(
      {{is_output, atom.variable, atom.mf}, rule, is_turned ? -atom.degree : atom.degree});
}

void AddElement(const TRuleElement& element, bool is_negated, std::size_t rule,
                std::vector<TNamedTerm>& terms) {
  if (const auto* atom = std::get_if<TRuleAtom>(&element)) {
    return AddAtom(*atom, false, is_negated, rule, terms);
  }
  const TRuleExpression& expression = *std::get<std::unique_ptr<TRuleExpression>>(element);
  const bool turns = expression.OperatorName() == "not";
  for (const TRuleElement& part : expression) {
    AddElement(part, is_negated != turns, rule, terms);
  }
}

std::vector<TNamedTerm> NamedTerms(const TFuzzyRuleSet& rules) {
  std::vector<TNamedTerm> terms;
  std::size_t number = 0;
  for (const TRule& rule : rules.Rules()) {
    if (number == kMostRules) break;
    AddElement(rule.antecedent, false, number, terms);
    for (const TRuleAtom& atom : rule.consequences) AddAtom(atom, true, false, number, terms);
    ++number;
  }
  return terms;
}

// "Wind light", with as much of the variable as there is room for.
std::string NameOf(const TFuzzyRuleSet& rules, const TTermRow& term) {
  constexpr std::size_t kLongestTerm = 14;
  const TMFSetList& variables = term.is_output ? rules.Outputs() : rules.Inputs();
  const TBasicMFSet* const set = variables.GetMFSet(term.variable);
  if (!set) return "?";
  const TBasicMF* const mf = term.mf >= 0 ? set->GetMF(term.mf) : nullptr;
  const std::string name =
      Legible(mf ? mf->Name().value_or(std::to_string(term.mf)) : "?", kLongestTerm);
  const std::size_t room = kLongestTick - 1 - WidthOf(Characters(name));
  return Legible(set->Name().value_or(""), room) + " " + name;
}

TGrid EmptyGrid(std::size_t columns, std::size_t rows) {
  constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();
  return {
      columns, rows, 1.0,     std::vector<double>(columns * rows, kNothing), TShading::kBothWays,
      -1.0,    1.0,  "degree"};
}

}  // namespace

bool HasTerms(const TMFSetList& variables) {
  return std::ranges::any_of(variables.MFCounts(), [](int count) { return count > 0; });
}

TPicture TermsPicture(std::string_view alias, const TMFSetList& inputs, const TMFSetList& outputs) {
  TPicture picture = {"Terms of " + std::string(alias), {}};
  AddPanels(picture, inputs, "input ");
  AddPanels(picture, outputs, "output ");
  const std::size_t all = picture.panels.size();
  picture.panels.resize(std::min(all, kMaxPanels));
  picture.title += FirstOf(picture.panels.size(), all, " variables");
  return picture;
}

TPicture RulesPicture(std::string_view alias, const TFuzzyRuleSet& rules) {
  const std::vector<TNamedTerm> named = NamedTerms(rules);
  std::vector<TTermRow> terms;
  terms.reserve(named.size());
  for (const TNamedTerm& term : named) terms.push_back(term.term);
  std::ranges::sort(terms, {}, &TTermRow::Key);
  const auto is_same = [](const TTermRow& a, const TTermRow& b) { return a.Key() == b.Key(); };
  terms.erase(std::unique(terms.begin(), terms.end(), is_same), terms.end());
  const std::size_t all_terms = terms.size();
  terms.resize(std::min(all_terms, kMostTerms));
  const auto all_rules = static_cast<std::size_t>(rules.Rules().Count());
  const std::size_t columns = std::min(all_rules, kMostRules);

  TPanel panel;
  TGrid grid = EmptyGrid(columns, terms.size());
  for (const TNamedTerm& term : named) {
    const auto row = static_cast<std::size_t>(
        std::ranges::lower_bound(terms, term.term.Key(), {}, &TTermRow::Key) - terms.begin());
    if (row == terms.size() || !std::isfinite(term.degree)) continue;
    grid.values[row * columns + term.rule] = term.degree;
    grid.upper = std::max(grid.upper, std::abs(term.degree));
    if (term.degree < 0.0) {
      panel.notes.push_back({static_cast<double>(term.rule), static_cast<double>(row), "−"});
    }
  }
  const bool has_negative = !panel.notes.empty();
  grid.shading = has_negative ? TShading::kBothWays : TShading::kUpwards;
  grid.lower = has_negative ? -grid.upper : 0.0;
  panel.grid = std::move(grid);
  panel.x = {"rule", -0.5, static_cast<double>(columns) - 0.5, false, {}};
  for (std::size_t i = 1; i <= columns; ++i) {
    constexpr std::size_t kFew = 9;
    constexpr std::size_t kEvery = 5;
    const bool is_told = columns <= kFew || i == 1 || i % kEvery == 0;
    panel.x.ticks.push_back(is_told ? std::to_string(i) : "");
  }
  panel.y = {"", -0.5, static_cast<double>(terms.size()) - 0.5, false, {}};
  panel.is_downwards = true;
  for (std::size_t i = 0; i < terms.size(); ++i) {
    panel.y.ticks.push_back(NameOf(rules, terms[i]));
    const bool begins_output = i > 0 && terms[i].is_output != terms[i - 1].is_output;
    if (begins_output) panel.rules.push_back(static_cast<double>(i) - 0.5);
  }
  const std::string title = "Rules of " + std::string(alias) + FirstOf(columns, all_rules, "") +
                            FirstOf(terms.size(), all_terms, " terms");
  return {title, {std::move(panel)}};
}

}  // namespace kiln
