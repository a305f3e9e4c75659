#include <gtest/gtest.h>

#include <algorithm>

#include "Export/FclFile.h"
#include "FileTestTools.h"
#include "RuleObject/TFuzzyRuleSet.h"
#include "RuleObject/TRuleFile.h"
#include "Shared/Random.h"

#ifdef KILN_HAS_FUZZYLITE
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wunknown-warning-option"
#pragma GCC diagnostic ignored "-Winconsistent-missing-override"
#include <fl/Headers.h>
#pragma GCC diagnostic pop
#endif

namespace kiln {
namespace {

// The variables of a file that was written by hand, two names being words of the language, with
// rules that use every kind of term, and "not" in all its places.
const std::string kHandmade = Contents(KILN_TEST_DATA "/sailing.rules");
const std::string kVariables =
    With(With(With(kHandmade.substr(0, kHandmade.find("[RuleList]")), "Name=Wind", "Name=very"),
              "Name=Sea", "Name=sea-state"),
         "Name=Sail", "Name=Sea_State");
const std::string kRules = kVariables + R"([RuleList]
if <very is light> then <sea_state is full>
if <very is light> and not (<sea-state is calm> or <very is not gale>) then <sea_state is reefed>
if not <very is gale 3> then <sea_state is full 0.25> and <sea_state is reefed>
if <sea-state is rough> or <sea-state is not calm -1> then <sea_state is not reefed>
[~RuleList]
[~FuzzyRules])";

#ifdef KILN_HAS_FUZZYLITE
// The degree to which an antecedent holds, by minimum, maximum and complement.
double Holds(const TRuleElement& element, const TMFSetList& inputs, const double* x) {
  if (const auto* atom = std::get_if<TRuleAtom>(&element)) {
    const TBasicMF* mf = inputs.GetMFSet(atom->variable)->GetMF(atom->mf);
    const double degree = mf->GetMembership(x[atom->variable]);
    return atom->negated ? 1.0 - degree : degree;
  }
  const TRuleExpression& expression = *std::get<std::unique_ptr<TRuleExpression>>(element);
  double degree = Holds(expression.Get(0), inputs, x);
  if (expression.Count() == 1) return expression.OperatorName() == "not" ? 1.0 - degree : degree;
  for (int i = 1; i < expression.Count(); ++i) {
    const double next = Holds(expression.Get(i), inputs, x);
    degree = expression.OperatorName() == "and" ? std::min(degree, next) : std::max(degree, next);
  }
  return degree;
}

TEST(FclTest, AnIndependentReaderAnswersTheSame) {
  const std::string path = ScratchPath();
  FileTools::Reader reader(kRules, "f");
  const TFuzzyRuleSet rules = TRuleFile::LoadRules(reader);
  FclFile::Save(path, "end_if", rules);
  const std::unique_ptr<fl::Engine> engine(fl::FclImporter().fromFile(path));
  std::string message;
  ASSERT_TRUE(engine->isReady(&message)) << message << Contents(path);
  EXPECT_EQ(engine->getName(), "n_end_if");
  Random::Seed(1);
  for (int n = 0; n < 1000; ++n) {
    const double x[] = {Random::Uniform(-5, 50), Random::Uniform(-2, 2)};
    const auto holds = [&](int rule) {
      return Holds(rules.Rules().Get(rule).antecedent, rules.Inputs(), x);
    };
    // Reefed is 0.25 and Full 1; this reader adds up what rules say of one term.
    const double reefed = holds(1) + holds(2);
    const double full = holds(0) + 0.25 * holds(2);
    const double expected = reefed + full == 0.0 ? 0.0 : (0.25 * reefed + full) / (reefed + full);
    engine->setInputValue("n_very", x[0]);
    engine->setInputValue("sea_state", x[1]);
    engine->process();
    EXPECT_NEAR(engine->getOutputValue("Sea_State_2"), expected, 1e-9) << x[0] << ' ' << x[1];
  }
  std::filesystem::remove(path);
}
#else
TEST(FclTest, AnIndependentReaderAnswersTheSame) {
  GTEST_SKIP() << "libfuzzylite-dev is not installed";
}
#endif

}  // namespace
}  // namespace kiln
