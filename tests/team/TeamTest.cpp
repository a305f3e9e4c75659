#include "Shared/TTeam.h"

#include <gtest/gtest.h>
#include <kiln/kiln.h>

#include <atomic>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include "../FileTestTools.h"
#include "Shared/NumberFormat.h"
#include "Shared/Random.h"

namespace kiln {
namespace {

// --- Pieces ----------------------------------------------------------------------------------

class Team : public testing::TestWithParam<std::size_t> {
 protected:
  Team() { TTeam::SetWorkers(GetParam()); }
  ~Team() override { TTeam::SetWorkers(1); }
};

INSTANTIATE_TEST_SUITE_P(OfWorkers, Team, testing::Values(1, 2, 3, 7));

TEST_P(Team, CarriesOutEachPieceOnce) {
  std::vector<std::vector<std::size_t>> done(GetParam(), std::vector<std::size_t>(100));
  std::vector<std::size_t> results(100);
  for (std::size_t round = 0; round < 1000; ++round) {
    TTeam::Collect<std::size_t>(results, 1.0, GetParam(),
                                [&](std::size_t number, std::size_t place) {
                                  ++done[place][number];
                                  return number * round;
                                });
    EXPECT_EQ(std::accumulate(results.begin(), results.end(), std::size_t{0}), 4950 * round);
  }
  for (std::size_t number = 0; number < 100; ++number) {
    std::size_t times = 0;
    for (const auto& by_place : done) times += by_place[number];
    EXPECT_EQ(times, 1000U);
  }
}

TEST_P(Team, PassesOnWhatTheFirstOfFailingPiecesThrows) {
  for (int round = 0; round < 200; ++round) {
    try {
      TTeam::ForEach(50, GetParam(), [](std::size_t number, std::size_t) {
        if (number % 10 == 7) throw std::out_of_range(std::to_string(number));
      });
      ADD_FAILURE();
    } catch (const std::out_of_range& failure) {
      EXPECT_STREQ(failure.what(), "7");
    }
  }
}

TEST_P(Team, CarriesOutLoopsOfPiecesAtOnce) {
  std::atomic<int> in_order = 0;
  TTeam::ForEach(20, GetParam(), [&](std::size_t, std::size_t) {
    std::size_t next = 0;
    TTeam::ForEach(5, GetParam(), [&](std::size_t number, std::size_t place) {
      in_order += number == next++ && place == 0;
    });
  });
  EXPECT_EQ(in_order, 100);
}

// --- Sessions whose files are the same for every number of workers ---------------------------

class SharedWork : public TFileTest {
 protected:
  // What a session with a set of random rows, d, answers to the commands, and the file that each
  // `save` among them writes.
  std::string Session(int rows, const std::vector<std::string>& commands, int threads) const {
    TSession::SetThreads(threads);
    TSession session;
    std::string all;
    const auto say = [&](const std::string& command) {
      const TSession::TReply reply = session.Execute(command);
      EXPECT_TRUE(reply.ok) << command << ": " << reply.text;
      all += reply.text + "\n";
      if (command.starts_with("save")) all += Contents(path_);
    };
    AddRows(rows, say);
    for (const std::string& command : commands) say(command);
    TSession::SetThreads(1);
    return all;
  }

  void ExpectTheSame(int rows, const std::vector<std::string>& commands) const {
    const std::string alone = Session(rows, commands, 1);
    for (const int threads : {2, 3, 7}) {
      EXPECT_TRUE(Session(rows, commands, threads) == alone) << threads << " " << commands[2];
    }
  }

  const std::string file_ = " filename (" + path_ + ")";

 private:
  template <typename TSay>
  static void AddRows(int rows, const TSay& say) {
    Random::Seed(1);
    const auto value = [] { return FormatGeneral(Random::Uniform(0.0, 1.0), 17); };
    // The last rows take the places of the first.
    say("create Data alias d inputs 3 outputs 2 labels off rows " + std::to_string(rows - 100));
    for (int row = 0; row < rows; ++row) {
      say("append alias d inputs {" + value() + ", " + value() + ", " + value() + "} outputs {" +
          value() + ", " + value() + "}");
    }
  }
};

struct TTraining {
  std::string kind, network, trainer, train;
};

const std::string kPerceptron = "layers 4 hidden {40, 20} outputs 2 bias true";
const std::string kTarn = "condition {3, 4, 5} rules 30 outputs 2 action {3, 5}";
const std::string kMap = "dimensions 2 mapdim {20, 20}";
const std::string kBreed = "minweight -2 maxweight 2 population 30";

TEST_F(SharedWork, OfTrainingAndRecallIsTheSameForEveryNumberOfWorkers) {
  const TTraining kinds[] = {
      {"MLP", kPerceptron, "GATrainer " + kBreed, "generations 5 mutation 0.1 seed 3"},
      {"Tarn", kTarn, "GATrainer " + kBreed, "generations 5 validation d seed 3"},
      {"MLP", kPerceptron, "BPTrainer", "epochs 5 mode batch LearningRate 0.001 validation d"},
      {"MLP", kPerceptron, "BPTrainer",
       "epochs 3 method adam batch 530 penalty quadratic decay 1e-4"},
      {"MLP", "layers 3 hidden {30000} outputs 2 bias true", "BPTrainer", "epochs 1 mode batch"},
      {"Kohonen", kMap, "KohonenTrainer", "epochs 2 LearningRate 0.1 neighbourhood {4, 4}"},
      {"Kohonen", kMap, "KohonenTrainer",
       "epochs 2 mode batch LearningRate 0.5 neighbourhood {4, 4}"},
      {"Tarn", kTarn, "BPTrainer", "epochs 3 method rprop error meansquare"},
  };
  for (const TTraining& of : kinds) {
    ExpectTheSame(1200, {"create " + of.kind + " alias n inputs 3 seed 1 " + of.network,
                         "create " + of.trainer + " alias t network n",
                         "train alias t data d " + of.train, "recall network n input d output o",
                         "query score network n data d", "query history t",
                         "save " + of.kind + " alias n" + file_, "save Data alias o" + file_});
  }
}

// Rules are tried part by part. Of each kind of file there are several pieces.
TEST_F(SharedWork, OfRulesAndFilesIsTheSameForEveryNumberOfWorkers) {
  ExpectTheSame(300,
                {"create Tarn alias n inputs 3 seed 1 " + kTarn, "labeltarn network n labels l",
                 "retarn network n labels l rules r data d method NodeLocation rounds 2 refit on",
                 "save FuzzyRules alias r" + file_});
  ExpectTheSame(6000, {"save Data alias d" + file_, "load Data alias again" + file_,
                       "save CSV alias again" + file_,
                       "load CSV alias table" + file_ + " outputs {output0, output1}",
                       "save Data alias table" + file_});
  EXPECT_GT(Contents(path_).size(), std::size_t{1} << 19);
}

}  // namespace
}  // namespace kiln
