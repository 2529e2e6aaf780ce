// How much of a page a key database answers: each named field with the key that
// a scan would give it, read with the program's own parser and matching.
//
// Pages may carry hand-made labels (a field's data-manual-scoring attribute names
// the kind of data it asks for); a kinds list says which keys answer which labels,
// so that the report can count right answers per kind and list every fill of a
// field that must get another kind or nothing.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "keys/key_table.h"
#include "scan/matcher.h"

namespace qb {

struct ReportField {
  std::string name;         // as the program reads it
  std::string writtenName;  // as the page writes it; differs when the program misreads the tag
  std::string type;   // an input's type word as written, or "select" / "textarea"
  std::string label;  // the data-manual-scoring attribute; "" when none
  int form = 0;       // number (from 1) of the scanned form that fills it; 0 for none
  std::uint32_t key = kNoMatch;         // for `name`
  std::uint32_t writtenKey = kNoMatch;  // for `writtenName`
};

struct ReportPage {
  std::vector<std::string> formActions;  // the forms a scan keeps, page order
  // Every named input, select and textarea tag of the page, also those outside
  // the scanned forms (a scan fills none of them, but their names are evidence).
  std::vector<ReportField> fields;
};

enum class ReportPageStatus { kRead, kUnreadable, kOutOfMemory };

ReportPageStatus ReadReportPage(const std::string& path, const KeyTable& keys, ReportPage& page);

// The pages of a folder that the report reads (.htm and .html), sorted by name.
std::vector<std::string> ReportPageNames(const std::string& folder);

// A kinds list, one rule a line ('#' starts a comment):
//   want LABEL KEY NAME          fields labelled LABEL are personal data that the key
//                                named KEY NAME answers (a label may name several keys)
//   guard PREFIX                 labels starting with PREFIX are fields that must stay empty
//   relabel PAGE FIELD LABEL     the field named FIELD on PAGE is labelled wrongly; LABEL holds
//   allow PAGE FIELD KEY NAME    that field may get that key, though its label says
//                                otherwise (a judgement made for one field, never a label)
// A label "A OR B" takes a key of either.
struct LabelKinds {
  std::map<std::string, std::vector<std::string>> wanted;
  std::vector<std::string> guarded;
  std::map<std::string, std::string> relabelled;             // page LF field name -> label
  std::map<std::string, std::vector<std::string>> allowed;  // page LF field name -> key names
};

bool ParseLabelKinds(std::string_view text, LabelKinds& kinds, std::string& error);

struct KindCount {
  int wanted = 0;
  int answered = 0;         // by a key of the right kind, for the name the page writes
  int misread = 0;          // the program reads another name than the page writes
  int scannedWanted = 0;    // of those, in forms a scan fills
  int scannedAnswered = 0;
};

struct LabelledFill {
  std::string page;
  ReportField field;
  std::string name;  // the name that was looked up
  std::string keyName;
};

struct LabelTally {
  std::map<std::string, KindCount> kinds;  // one row per wanted label
  std::vector<LabelledFill> wrong;         // a key answering a field labelled otherwise
  int guardedFills = 0;                    // of those, fields that must stay empty
  std::vector<LabelledFill> acceptedFills;  // right keys for fields not counted as wanted
  std::vector<LabelledFill> unanswered;    // wanted fields no key answers
  KindCount total;
};

void TallyLabels(const LabelKinds& kinds, const KeyTable& keys, const std::string& pageName,
                 const ReportPage& page, LabelTally& tally);

// A key's Name as text ("" for kNoMatch).
std::string KeyName(const KeyTable& keys, std::uint32_t key);

}  // namespace qb
