#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "results/Message.h"
#include "store/DBI_IO.h"
#include "tests/maintenance/RebuildReports.h"
#include "tests/support/StudyCheck.h"

// Rebuilds after random histories of writes, updates and removals: nothing is lost or changed, and
// nothing is left over.

namespace {

using Random = std::mt19937;

constexpr int kSteps = 60;
constexpr int kNumbers = 9;

/// Values whose bits have to stay, the odd ones among them.
double AnyValue(Random& random) {
  using Limits = std::numeric_limits<double>;
  static const double odd[] = {0.0,
                               -0.0,
                               Limits::infinity(),
                               -Limits::infinity(),
                               Limits::quiet_NaN(),
                               -Limits::quiet_NaN(),
                               Limits::denorm_min(),
                               -Limits::denorm_min(),
                               Limits::min() / 3,
                               Limits::max(),
                               1e30};
  const auto choice = random() % 16;
  if (choice < std::size(odd)) return odd[choice];
  // Any bits at all, a NaN with a payload of its own included.
  const std::uint64_t bits = (std::uint64_t{random()} << 32) | random();
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

std::vector<double> AnyValues(Random& random) {
  std::vector<double> values(random() % 12);
  for (double& value : values) value = AnyValue(random);
  return values;
}

std::string AnyText(Random& random) {
  std::string text(random() % 300, ' ');
  for (char& letter : text) letter = static_cast<char>(1 + random() % 255);
  return text;
}

std::string BytesOf(const std::vector<double>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(double)};
}

template <class Array>
std::vector<double> ValuesOf(const Array& stored) {
  return {std::begin(stored), std::end(stored)};
}

// ---- The classes of the histories ----

/// What an object holds, as bytes; by class and number.
using Model = std::map<std::pair<int, int>, std::string>;
constexpr int kClassesUsed = 4;

void Fill(CInput& input, const std::vector<double>& values, const std::string& text) {
  input.m_strName = text;
  input.m_fInitial = values.empty() ? 0.0 : values[0];
}
std::string Contents(const CInput& input) {
  return input.m_strName + '|' + BytesOf({input.m_fInitial});
}

void Fill(CAuxiliary& definition, const std::vector<double>& values, const std::string& text) {
  definition.m_vfCoef.assign(values.begin(), values.end());
  definition.m_strEquation = text;
}
std::string Contents(const CAuxiliary& definition) {
  return definition.m_strEquation + '|' + BytesOf(ValuesOf(definition.m_vfCoef));
}

void Fill(CDPoint& point, const std::vector<double>& values, const std::string&) {
  point.m_IDVar = std::valarray<double>(values.data(), values.size());
  point.m_IResp = std::valarray<double>(values.data(), values.size() / 2);
}
std::string Contents(const CDPoint& point) {
  return BytesOf(ValuesOf(point.m_IDVar)) + '|' + BytesOf(ValuesOf(point.m_IResp));
}

void Fill(CMessage& message, const std::vector<double>&, const std::string& text) {
  message.m_Messages = {text, "", text.substr(text.size() / 2)};
}
std::string Contents(const CMessage& message) {
  std::string all;
  for (const std::string& text : message.m_Messages) all += text + '|';
  return all;
}

/// Calls `use` with a new object that has the key.
template <class Use>
void WithObject(const std::pair<int, int>& key, Use use) {
  const auto numbered = [&](auto object) {
    object.m_nID = key.second;
    use(object);
  };
  switch (key.first) {
    case 0:
      return numbered(CInput(GetPOD()));
    case 1:
      return numbered(CAuxiliary(GetPOD()));
    case 2:
      return numbered(CMessage(GetPOD()));
    default: {
      CDPoint point(GetPOD());
      point.m_nTaskID = 1 + key.second % 2;
      point.m_nPointID = key.second;
      use(point);
    }
  }
}

// ---- A history ----

class RebuildHistories : public StudyRun, public testing::WithParamInterface<unsigned> {
 protected:
  ~RebuildHistories() override { CloseDatabase(); }

  void Live(Random& random) {
    OpenDatabase(base);
    const CLock lock(GetPOD(), 0);
    for (int step = 0; step < kSteps; ++step) {
      const std::pair<int, int> key(static_cast<int>(random() % kClassesUsed),
                                    1 + static_cast<int>(random() % kNumbers));
      const auto choice = random() % 10;
      WithObject(key, [&](auto& object) {
        if (choice < 6) {
          Fill(object, AnyValues(random), AnyText(random));
          object.PutObject();
          model[key] = Contents(object);
        } else {
          const bool removed = choice < 8 ? object.RemoveObject() : object.DeleteObject();
          EXPECT_EQ(removed, model.erase(key) == 1);
        }
      });
    }
  }

  /// That the study holds what the model says, bit for bit.
  void ExpectModel() {
    OpenDatabase(base);
    const CLock lock(GetPOD(), 0);
    for (int kind = 0; kind < kClassesUsed; ++kind) {
      for (int number = 1; number <= kNumbers; ++number) {
        const auto found = model.find({kind, number});
        WithObject({kind, number}, [&](auto& object) {
          ASSERT_EQ(object.GetObject(), found != model.end()) << kind << ' ' << number;
          if (found != model.end()) {
            EXPECT_TRUE(Contents(object) == found->second) << kind << ' ' << number;
          }
        });
      }
    }
  }

  /// The objects in file order, without the addresses in their headers.
  std::vector<std::string> LiveObjects() const {
    std::vector<std::string> objects;
    for (const RawBlock& block : ReadRawFile(data).blocks) {
      if (block.status == 'N') objects.push_back(std::string(block.object).replace(4, 4, "...."));
    }
    return objects;
  }

  Model model;
};

TEST_P(RebuildHistories, LeaveExactlyTheLiveObjects) {
  Random random(GetParam());
  for (int round = 0; round < 5; ++round) {
    Live(random);
    CloseDatabase();
    const std::vector<std::string> objects = LiveObjects();
    KFileRebuild(data);
    KIndexRebuildCheck(base, true);

    EXPECT_TRUE(LiveObjects() == objects);
    const RawFile made = ReadRawFile(data);
    EXPECT_EQ(made.freeSpace, 0);
    EXPECT_EQ(made.blocks.size(), objects.size());  // none is free
    EXPECT_EQ(made.bytes.size(), static_cast<std::size_t>(made.endOfFile));
    EXPECT_EQ(FaultsOfStudy(base), "");
    EXPECT_EQ(Names(), "study.ksb study.kx");
    EXPECT_NO_THROW(KIndexRebuildCheck(base, false));
    ExpectModel();
    CloseDatabase();
    ASSERT_FALSE(HasFailure()) << "round " << round;
    ClearLog();
  }
}

// Five histories each, one on top of the other.
INSTANTIATE_TEST_SUITE_P(Seeds, RebuildHistories, testing::Range(1U, 41U));

}  // namespace
