#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FileHandler/TFuzzyMFFiler.h"
#include "FileTestTools.h"
#include "Membership/TLShoulderTriangularMF.h"
#include "Membership/TRShoulderTriangularMF.h"
#include "Membership/TRectangularMF.h"
#include "Membership/TSingletonMF.h"
#include "Membership/TTriangularMF.h"

namespace kiln {
namespace {

// A list with everything that a section can hold.
const std::string kSection = Contents(KILN_TEST_DATA "/every-kind.mflist");

std::string Written(const TMFSetList& list) {
  return WrittenBy([&](FileTools::Writer& out) { TFuzzyMFFiler::SaveMFList(out, list); });
}

TMFSetList ReadList(const std::string& text) {
  FileTools::Reader reader(text, "f");
  return TFuzzyMFFiler::LoadMFlist(reader, "FuzzyRules");
}

TEST(Membership, FollowsTheShapes) {
  const double far = 1e300;
  const TSingletonMF singleton({}, 0.1);
  const TRectangularMF rectangle({}, -1, 2);
  const TTriangularMF triangle({}, 0, 1, 5);
  const TTriangularMF left_step({}, 2, 2, 4);
  const TTriangularMF right_step({}, 2, 4, 4);
  const TLShoulderTriangularMF left({}, 1, 3);
  const TRShoulderTriangularMF right({}, 1, 3);
  const struct {
    const TBasicMF& mf;
    std::vector<std::pair<double, double>> points;
  } kShapes[] = {
      {singleton, {{0.1, 1}, {0.1 + 1e-15, 0}, {-far, 0}}},
      {rectangle, {{-1, 1}, {2, 1}, {0, 1}, {-1.001, 0}, {2.001, 0}}},
      {triangle, {{-0.001, 0}, {0, 0}, {0.25, 0.25}, {1, 1}, {2, 0.75}, {4, 0.25}, {5, 0}, {6, 0}}},
      {left_step, {{1.999, 0}, {2, 1}, {3, 0.5}, {4, 0}}},
      {right_step, {{2, 0}, {3, 0.5}, {4, 1}, {4.001, 0}}},
      {left, {{-far, 1}, {1, 1}, {1.5, 0.75}, {3, 0}, {far, 0}}},
      {right, {{-far, 0}, {1, 0}, {1.5, 0.25}, {3, 1}, {far, 1}}},
  };
  for (const auto& [mf, points] : kShapes) {
    for (const auto& [x, membership] : points) {
      EXPECT_DOUBLE_EQ(mf.GetMembership(x), membership) << mf.Type() << x;
    }
  }
}

TEST(FuzzyMFFiler, WritesWhatItReads) {
  const TMFSetList list = ReadList(kSection);
  EXPECT_EQ(Written(list), kSection);

  const TBasicMFSet& wind = *list.GetMFSet(0);
  EXPECT_EQ(dynamic_cast<const TTriangularMF&>(*wind.GetMF(1)).Centre(), 0.5);
  EXPECT_EQ(wind.GetMF(2), nullptr);
  EXPECT_EQ(dynamic_cast<const TRShoulderTriangularMF&>(*wind.GetMF(5)).LeftBound(), 0.5);
}

// The index in the file chooses a function's slot, also one that is taken or the spare one.
TEST(FuzzyMFFiler, PutsFunctionsWhereTheyBelong) {
  const TMFSetList list = ReadList(With(kSection, "Index=1 Type=T", "Index=6 Type=t"));
  EXPECT_EQ(list.GetMFSet(0)->GetMF(1), nullptr);
  EXPECT_EQ(list.GetMFSet(0)->GetMF(6)->Type(), "Triangular");
  const std::string text = Written(list);
  EXPECT_NE(text.find("[Index=1 Type=Empty ]"), std::string::npos);
  EXPECT_EQ(text.find("Index=6"), std::string::npos);
  EXPECT_EQ(Written(ReadList(text)), text);

  const TMFSetList repeated = ReadList(With(kSection, "block Index=4", "block Index=3"));
  EXPECT_EQ(repeated.GetMFSet(0)->FindMF("exact"), -1);
  EXPECT_EQ(repeated.GetMFSet(0)->FindMF("block"), 3);
}

TEST(FuzzyMFFiler, RefusesFaultyText) {
  ExpectFailures(
      kSection,
      {{"sented = 2", "sented = 3", "[MFSet] expected (f, line 57)"},
       {"sented = 2", "sented = -1", "VariablesRepresented = -1 is negative (f, line 4)"},
       {"sented = 2", "sented = 2000000000",
        "VariablesRepresented = 2000000000 is more than the file holds (f, line 4)"},
       {"OfMF = 6", "OfMF = 99999999999",
        "NumberOfMF = 99999999999 is more than the file holds (f, line 13)"},
       {"OfMF = 6", "OfMF = 7", "[MF] expected (f, line 45)"},
       {"Index=5", "Index=4294967296", "Bad MF Number Invalid Parameter TBasicMFSet::SetMF"},
       {"Bound=1.0", "Bound=-1.0",
        "UpperBound must be > LowerBound Bad File Data TFuzzyMFFIler::LoadMFlist"},
       {"Bound=1.0", "Bound=nan",
        "UpperBound must be > LowerBound Bad File Data TFuzzyMFFIler::LoadMFlist"},
       {"Type=Singleton ", "", "[Type = <string>] expected (f, line 31)"},
       {"Centre = 0.33", "Middle = 0.33", "[Centre = <number>] expected (f, line 32)"},
       {"[~MFSet]", "[~MF]", "Unexpected End Tag (f, line 45)"}},
      ReadList);
}

}  // namespace
}  // namespace kiln
