#include "tests/fault/pairs/RecordFields.h"

#include <stdexcept>

#include "tests/fault/FileMap.h"

namespace {

// The fields behind the version word, a letter each: i integer, r real, s text; I, R, S lists of
// these; M a list of lists of integers, N one of lists of reals. Blanks don't count.

const std::string kRandom = "iiii";
const std::string kBlocks =
    // Gradient-based optimiser
    "ii rr iiiiiiiiiiiiiii rrrrrrrrrrrrr i rrrr s i sss i" + kRandom +
    // Response surfaces
    "ii rr iiiiiii rrrr i rrrr iiiiiiii rrrrrrrrrrrr" + kRandom +
    // Design of experiments
    "iiiiii II" + kRandom +
    // Population-based optimiser
    "iiiiiiiii rrrrrrrrr i rrrr ii" + kRandom + "i" +
    // Analysis
    kRandom;

/// By class index.
const std::string kLayouts[kClasses] = {
    "i ss iiiii III ii rrrrrrr iiii",                       // CInput
    "i s ii R ss R S",                                      // CAuxiliary
    "i i ss iii sss i ssssss i" + kBlocks +                 // CTask
        "II iiiiiiiiiiiii ii s ii II",                      //
    "i IIIIII RRRR R RRRR SSSS I RR II MMMMM I III",        // CDVar
    "i IIIII SSS II I MMMMM II",                            // CDResp
    "i II R I R",                                           // CDCons
    "i IIII RRR",                                           // CDObj
    "i I S N",                                              // CDLink
    "i SSS I",                                              // CDEqn
    "iii R I RRRR",                                         // CApproxModels
    "iiiiiiii rr s iiiii ss rrrrrrrrrrrrrrrrrrrr I R I i",  // CResult
    "iii RRRRRRR",                                          // CDPoint
    "iiiii rrrr I R",                                       // CIter
    "i S I N",                                              // CDSet
    "III NN",                                               // CGPoint
    "iiii I",                                               // CDBCtrl
    "ii I r I rrrr",                                        // CRDOE
    "i ss iii sss ii sssssssss ii r I" + kBlocks,           // CDesignControl
    "i ss iiiiii III ii rrr ir ir ir ir ii",                // CResp
    "ii RRRRRRRR rrrrrrrrrrrrrrr",                          // CResidual
    "i S",                                                  // CMessage
    "iii I ii R",                                           // CRApproxMod
};

/// Goes through a record field by field.
class Reader {
 public:
  explicit Reader(const std::string& record) : record_(record) {}

  void Read(char field) {
    switch (field) {
      case ' ':
        return;
      case 'i':
        at_ += 4;
        return;
      case 'r':
        at_ += 8;
        return;
      case 's':
        at_ += Count(RecordCount::Of::Text, 1);
        return;
      case 'I':
        at_ += 4 * Count(RecordCount::Of::Elements, 4);
        return;
      case 'R':
        at_ += 8 * Count(RecordCount::Of::Elements, 8);
        return;
      default:
        ReadLists(field == 'S' ? 's' : field == 'M' ? 'I' : 'R');
    }
  }
  bool IsAtEnd() const { return at_ == record_.size(); }

  std::vector<RecordCount> counts;

 private:
  std::size_t Count(RecordCount::Of of, std::size_t element) {
    counts.push_back({of, at_, element});
    at_ += 4;
    return NumberAt(record_, at_ - 4);
  }
  void ReadLists(char element) {
    const std::size_t count = Count(RecordCount::Of::Elements, 4);
    for (std::size_t i = 0; i < count; ++i) Read(element);
  }

  const std::string& record_;
  std::size_t at_ = 4;
};

}  // namespace

std::vector<RecordCount> CountsIn(const ListedObject& object) {
  Reader reader(object.record);
  for (const char field : kLayouts[object.classID / 1000 - 1]) reader.Read(field);
  if (!reader.IsAtEnd()) throw std::logic_error("another layout: " + NameOf(object));
  return reader.counts;
}
