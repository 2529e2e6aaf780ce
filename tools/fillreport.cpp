// fillreport KEYS FOLDER
// fillreport --labels KINDS KEYS FOLDER
//
// How much of the pages in FOLDER (.htm and .html) the key database KEYS answers
// (a .dat file, or a readable key list .txt as makekeydb takes it), with the
// program's own parser and matching.
//   Without --labels: per page, each named field of each form a scan fills with
//   the key that answers it (or "-"), then the totals: fields, answered, and
//   answered per key.
//   --labels KINDS: the fields' data-manual-scoring labels judged by the kinds
//   list KINDS (see tools/fill_report.h): answered / wanted per labelled kind, over
//   every labelled field (by the name the page writes; "misread" counts those the
//   parser reads another name for) and over those in forms a scan fills; every
//   fill of a field labelled otherwise, those of fields that must stay empty
//   counted apart; the right fills of fields not counted as wanted; and the wanted
//   fields no key answers, which are the names to consider for the keys next.
// Exit status: 0 done (with --labels: and no wrong fill); 1 a file can't be read
// or a wrong fill was found; 2 a wrong command line.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include "base/user_message.h"
#include "keys/key_file.h"
#include "keys/key_text.h"
#include "scan/html_scanner.h"
#include "tools/fill_report.h"

namespace {

constexpr char kUsage[] =
    "usage: fillreport KEYS FOLDER\n"
    "       fillreport --labels KINDS KEYS FOLDER\n";

bool ReadFile(const std::string& path, std::string& text) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  text.assign(std::istreambuf_iterator<char>(in), {});
  return true;
}

bool LoadKeys(const std::string& path, qb::KeyTable& keys) {
  const bool keyText = path.size() > 4 && qb::EqualsNoCase(path.substr(path.size() - 4), ".txt");
  if (keyText) {
    std::string text, error;
    if (!ReadFile(path, text)) return false;
    if (qb::ParseKeyText(text, keys, error)) return true;
    std::fprintf(stderr, "fillreport: %s, %s\n", path.c_str(), error.c_str());
    return false;
  }
  const bool loaded = qb::LoadDatabase(path, keys).loaded();
  for (const qb::UserMessage& message : qb::TakeUserMessages()) {
    std::fprintf(stderr, "fillreport: %s: %s\n", path.c_str(), message.text.c_str());
  }
  return loaded;
}

std::string Percent(int part, int whole) {
  char text[16];
  std::snprintf(text, sizeof text, "%5.1f %%", whole ? 100.0 * part / whole : 0.0);
  return text;
}

void PrintFill(const qb::LabelledFill& fill) {
  std::printf("  %s: %s \"%s\" labelled %s <- %s\n", fill.page.c_str(), fill.field.type.c_str(),
              fill.name.c_str(), fill.field.label.c_str(),
              fill.keyName.empty() ? "-" : ("key \"" + fill.keyName + "\"").c_str());
}

void PrintPage(const std::string& name, const qb::ReportPage& page, const qb::KeyTable& keys,
               std::map<std::string, int>& perKey, int& fields, int& answered) {
  std::printf("%s\n", name.c_str());
  for (std::size_t f = 0; f < page.formActions.size(); ++f) {
    std::printf("  form %zu: %s\n", f + 1, page.formActions[f].c_str());
    for (const qb::ReportField& field : page.fields) {
      if (field.form != static_cast<int>(f) + 1) continue;
      const std::string key = qb::KeyName(keys, field.key);
      std::printf("    %-10s %-40s %s\n", field.type.c_str(), field.name.c_str(),
                  field.key == qb::kNoMatch ? "-" : key.c_str());
      ++fields;
      if (field.key != qb::kNoMatch) {
        ++answered;
        ++perKey[key];
      }
    }
  }
}

void PrintTally(const qb::LabelTally& tally) {
  std::printf("%-22s %6s %8s %8s %8s   %s\n", "kind", "wanted", "answered", "", "misread",
              "in forms a scan fills");
  const auto row = [](const std::string& name, const qb::KindCount& c) {
    std::printf("%-22s %6d %8d  %s %8d   %d / %d\n", name.c_str(), c.wanted, c.answered,
                Percent(c.answered, c.wanted).c_str(), c.misread, c.scannedAnswered, c.scannedWanted);
  };
  for (const auto& [kind, count] : tally.kinds) row(kind, count);
  row("all labelled kinds", tally.total);
  std::printf("wrong fills: %zu (of fields that must stay empty: %d)\n", tally.wrong.size(),
              tally.guardedFills);
  for (const qb::LabelledFill& fill : tally.wrong) PrintFill(fill);
  std::printf("accepted fills of fields labelled otherwise: %zu\n", tally.acceptedFills.size());
  for (const qb::LabelledFill& fill : tally.acceptedFills) PrintFill(fill);
  std::printf("unanswered: %zu\n", tally.unanswered.size());
  for (const qb::LabelledFill& fill : tally.unanswered) PrintFill(fill);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  std::string kindsPath;
  if (!args.empty() && args[0] == "--labels") {
    if (args.size() != 4) {
      std::fputs(kUsage, stderr);
      return 2;
    }
    kindsPath = args[1];
    args.erase(args.begin(), args.begin() + 2);
  }
  if (args.size() != 2) {
    std::fputs(kUsage, stderr);
    return 2;
  }
#ifdef _WIN32
  // The same bytes on every platform: no CR before each line feed.
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  qb::LabelKinds kinds;
  if (!kindsPath.empty()) {
    std::string text, error;
    if (!ReadFile(kindsPath, text)) {
      std::fprintf(stderr, "fillreport: can't read %s\n", kindsPath.c_str());
      return 1;
    }
    if (!qb::ParseLabelKinds(text, kinds, error)) {
      std::fprintf(stderr, "fillreport: %s, %s\n", kindsPath.c_str(), error.c_str());
      return 1;
    }
  }
  qb::KeyTable& keys = qb::Keys();
  if (!LoadKeys(args[0], keys)) {
    std::fprintf(stderr, "fillreport: can't read the key database %s\n", args[0].c_str());
    return 1;
  }
  const std::vector<std::string> names = qb::ReportPageNames(args[1]);
  if (names.empty()) {
    std::fprintf(stderr, "fillreport: no .htm or .html page in %s\n", args[1].c_str());
    return 1;
  }

  std::map<std::string, int> perKey;
  int fields = 0, answered = 0;
  qb::LabelTally tally;
  for (const std::string& name : names) {
    qb::ReportPage page;
    if (qb::ReadReportPage(args[1] + "/" + name, keys, page) != qb::ReportPageStatus::kRead) {
      std::fprintf(stderr, "fillreport: can't read the page %s\n", name.c_str());
      return 1;
    }
    if (kindsPath.empty()) {
      PrintPage(name, page, keys, perKey, fields, answered);
    } else {
      qb::TallyLabels(kinds, keys, name, page, tally);
    }
  }
  if (!kindsPath.empty()) {
    PrintTally(tally);
    return tally.wrong.empty() ? 0 : 1;
  }
  std::printf("%zu pages: %d fields, %d answered (%s)\n", names.size(), fields, answered,
              Percent(answered, fields).c_str());
  for (const auto& [key, count] : perKey) std::printf("  %-24s %d\n", key.c_str(), count);
  return 0;
}
