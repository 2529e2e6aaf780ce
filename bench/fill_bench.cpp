// The whole fill of a saved page, as fillpage runs it: a generated page of 1 MiB
// holding 8 forms of 99 fields each (with the FORM tag, the 100 slots a form can
// hold) against a database of 2000 keys with 10 Search Names each. Beside it, the
// same files only read and the filled page's bytes only written, for comparison.
//   fill_bench [RUNS]
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "keys/key_file.h"
#include "scan/saved_page_fill.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kPageBytes = 1 << 20;
constexpr int kForms = 8;
constexpr int kFieldsPerForm = 99;
constexpr int kSearchNamesPerKey = 10;

std::string Alias(int key, int entry) {
  return "alias" + std::to_string(key) + "_" + std::to_string(entry);
}

// Every key answers ten names; its Selection lists the second choice of a list.
void FillKeys(qb::KeyTable& keys) {
  qb::ClearAllKeys(keys);
  for (int k = 0; k < qb::kMaxKeys; ++k) {
    std::string names;
    for (int e = 0; e < kSearchNamesPerKey; ++e) names += (e ? ", " : "") + Alias(k, e);
    keys.fields[qb::kName][k] = qb::MakeTextBlock("Key " + std::to_string(k));
    keys.fields[qb::kSearchNames][k] = qb::MakeTextBlock(names);
    keys.fields[qb::kSelection][k] = qb::MakeTextBlock("Choice 1\r\nyes");
    keys.fields[qb::kDescription][k] = qb::MakeTextBlock("The answer of key " + std::to_string(k));
  }
  keys.count = qb::kMaxKeys;
}

// One field: its label row and the field. A fifth of the names match no key,
// the others are spread over the whole database and every Search Name position.
std::string Field(int form, int field, const std::string& filler) {
  const int n = form * kFieldsPerForm + field;
  const std::string name =
      n % 5 == 0 ? "unknown" + std::to_string(n) : Alias((n * 977) % qb::kMaxKeys, n % kSearchNamesPerKey);
  std::string html = "<tr><td class=\"label\"><font face=\"Arial\" size=\"2\">Question " + std::to_string(n) +
                     "</font><br><span class=\"hint\">" + filler + "</span></td><td>";
  switch (field % 6) {
    case 0:
      html += "<select name=\"" + name + "\" size=\"1\">";
      for (int o = 0; o < 4; ++o) {
        html += "<option value=\"" + std::to_string(o) + "\"" + (o == 0 ? " selected" : "") + ">Choice " +
                std::to_string(o) + "</option>";
      }
      html += "</select>";
      break;
    case 1: html += "<textarea name=\"" + name + "\" rows=\"3\" cols=\"40\">old</textarea>"; break;
    case 2: html += "<input type=\"radio\" name=\"" + name + "\" value=\"yes\"> yes"; break;
    case 3: html += "<input type=\"checkbox\" name=\"" + name + "\" value=\"yes\"> agreed"; break;
    default: html += "<input type=\"text\" name=\"" + name + "\" size=\"30\" maxlength=\"80\" value=\"\">";
  }
  return html + "</td></tr>\n";
}

std::string Page(std::size_t fillerBytes) {
  std::string filler;
  while (filler.size() < fillerBytes) filler += "Answer as it stands on your papers. ";
  filler.resize(fillerBytes);
  std::string html = "<html><head><title>Long form</title></head><body><table width=\"100%\" border=\"0\">\n";
  for (int f = 0; f < kForms; ++f) {
    html += "<form name=\"part" + std::to_string(f) + "\" action=\"/cgi-bin/apply.cgi?part=" + std::to_string(f) +
            "\" method=\"post\"><table>\n";
    for (int i = 0; i < kFieldsPerForm - 1; ++i) html += Field(f, i, filler);
    html += "<tr><td><input type=\"submit\" value=\"Next\"></td></tr></table></form>\n";
  }
  return html + "</table></body></html>\n";
}

// A page of exactly kPageBytes: the filler grows until it fits, then a comment pads it.
std::string OneMebibytePage() {
  const std::size_t base = Page(0).size();
  const std::size_t filler = (kPageBytes - base) / (Page(1).size() - base);
  std::string page = Page(filler);
  page.insert(page.size() - 1, std::string(kPageBytes - page.size(), ' '));
  return page;
}

std::string ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

template <typename F>
std::vector<double> TimeRuns(int runs, F f) {
  std::vector<double> ms;
  for (int r = 0; r < runs; ++r) {
    const auto start = Clock::now();
    f();
    ms.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
  }
  return ms;
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
  const std::filesystem::path dir = std::filesystem::temp_directory_path() / "qb_fill_bench";
  std::filesystem::create_directories(dir);
  qb::SavedPageFill fill;
  fill.page = (dir / "page.htm").string();
  fill.keys = (dir / "keys.dat").string();
  fill.out = (dir / "filled.htm").string();
  fill.address = "www.example.com/apply/long.htm";
  fill.currentKey = 0;

  const std::string page = OneMebibytePage();
  std::ofstream(fill.page, std::ios::binary).write(page.data(), static_cast<std::streamsize>(page.size()));
  FillKeys(qb::Keys());
  if (!qb::SaveDatabase(fill.keys, qb::Keys())) return 1;

  std::string request;
  const std::vector<double> whole = TimeRuns(runs, [&] {
    if (qb::FillSavedPage(fill, qb::Keys(), request) != qb::FillResult::kFilled) std::exit(1);
  });
  const std::string filled = ReadAll(fill.out);
  const std::vector<double> filesOnly = TimeRuns(runs, [&] {
    const std::string keys = ReadAll(fill.keys), bytes = ReadAll(fill.page);
    std::ofstream(fill.out, std::ios::binary).write(filled.data(), static_cast<std::streamsize>(filled.size()));
    if (keys.empty() || bytes.size() != page.size()) std::exit(1);
  });

  std::printf("page %zu bytes, %d forms x %d fields; %d keys x %d search names (%ju bytes); filled page %zu bytes\n",
              page.size(), kForms, kFieldsPerForm, qb::kMaxKeys, kSearchNamesPerKey,
              static_cast<std::uintmax_t>(std::filesystem::file_size(fill.keys)), filled.size());
  std::printf("whole fill:               median %8.1f ms, best %8.1f ms (%d runs)\n", Median(whole),
              *std::min_element(whole.begin(), whole.end()), runs);
  std::printf("reading and writing only: median %8.1f ms, best %8.1f ms\n", Median(filesOnly),
              *std::min_element(filesOnly.begin(), filesOnly.end()));
  std::filesystem::remove_all(dir);
  return 0;
}
