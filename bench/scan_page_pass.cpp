// Throughput of the page pass (scanner + form parser), in MB/s (10^6 bytes):
// over the real-world corpus, and over a generated 1 MiB page holding 8 forms
// of 100 slots each (99 fields and the FORM tag).
//   scan_page_pass [CORPUS_DIR] [SECONDS_PER_FIGURE]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "scan/form_parser.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kGeneratedBytes = 1 << 20;
constexpr int kFieldsPerForm = qb::kMaxFieldSlots - 1;

std::string GeneratedField(int form, int field, const std::string& filler) {
  const std::string id = std::to_string(form) + "_" + std::to_string(field);
  std::string html =
      "<tr><td class=\"label\" style=\"padding:2px 6px;vertical-align:top;text-align:right\">"
      "<font face=\"Verdana, Arial, Helvetica\" size=\"2\" color=\"#333366\"><b>Field " + id +
      "</b>&nbsp;</font><span class=\"hint\" title=\"" + filler + "\">" +
      filler.substr(0, filler.size() / 2) + "</span></td>\n<td class=\"input\">";
  switch (field % 7) {
    case 0:
      html += "<select name=\"s" + id + "\" size=\"1\">\n";
      for (int o = 0; o < 6; ++o) {
        html += "<option value=\"" + std::to_string(o) + "\">Choice number " +
                std::to_string(o) + "</option>\n";
      }
      html += "</select>";
      break;
    case 1:
      html += "<textarea name=\"t" + id + "\" rows=\"4\" cols=\"40\">Old text</textarea>";
      break;
    case 2:
      html += "<input type=\"radio\" name=\"r" + id + "\" value=\"yes\" checked> Yes";
      break;
    case 3:
      html += "<input type=\"checkbox\" name=\"c" + id + "\" value=\"on\"> Agree";
      break;
    default:
      html += "<input type=\"text\" name=\"f" + id +
              "\" size=\"30\" maxlength=\"60\" value=\"\" class=\"box\">";
  }
  return html + "</td></tr>\n";
}

std::string GeneratedPage(std::size_t fillerBytes) {
  std::string filler;
  const std::string words = "Please enter the value exactly as it appears on your statement. ";
  while (filler.size() < fillerBytes) filler += words;
  filler.resize(fillerBytes);
  std::string html =
      "<html><head><title>Generated</title><script>var x = 1;</script></head><body>\n"
      "<table width=\"100%\" align=\"center\" border=\"0\" cellpadding=\"2\">\n";
  for (int form = 0; form < qb::kMaxForms; ++form) {
    html += "<form name=\"f" + std::to_string(form) +
            "\" action=\"/cgi-bin/submit.cgi?step=" + std::to_string(form) +
            "\" method=\"post\"><table>\n";
    for (int field = 1; field < kFieldsPerForm; ++field) {
      html += GeneratedField(form, field, filler);
    }
    html += "<tr><td></td><td><input type=\"submit\" value=\"Send\"></td></tr>\n</table></form>\n";
  }
  return html + "</table></body></html>\n";
}

// Generated page of exactly kGeneratedBytes; the last bytes are a comment.
std::string OneMegabytePage() {
  const std::size_t base = GeneratedPage(0).size();
  const std::size_t perField = GeneratedPage(100).size() - base;  // 100 filler bytes cost this
  const std::size_t filler = (kGeneratedBytes - base - 64) * 100 / perField;
  std::string page = GeneratedPage(filler);
  if (page.size() + 7 > kGeneratedBytes) {
    std::fprintf(stderr, "generated page too large (%zu bytes)\n", page.size());
    std::exit(1);
  }
  page += "<!--" + std::string(kGeneratedBytes - page.size() - 7, '.') + "-->";
  return page;
}

// Parses every document in turn until `seconds` have passed; MB/s.
double Throughput(std::vector<std::unique_ptr<qb::FormScan>>& scans, double seconds) {
  std::size_t bytesPerRound = 0;
  for (const auto& scan : scans) bytesPerRound += scan->document.length();
  std::size_t rounds = 0;
  const Clock::time_point start = Clock::now();
  double elapsed = 0;
  do {
    for (auto& scan : scans) qb::ParseFormPage(*scan, "bench.example");
    ++rounds;
    elapsed = std::chrono::duration<double>(Clock::now() - start).count();
  } while (elapsed < seconds);
  return static_cast<double>(bytesPerRound) * rounds / elapsed / 1e6;
}

bool ReadFile(const std::string& path, std::string& bytes) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream content;
  content << in.rdbuf();
  bytes = content.str();
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string corpus = argc > 1 ? argv[1] : QB_CORPUS_DIR;
  const double seconds = argc > 2 ? std::atof(argv[2]) : 3.0;

  std::vector<std::unique_ptr<qb::FormScan>> pages;
  std::ifstream index(corpus + "/INDEX.tsv");
  std::string line;
  std::size_t corpusBytes = 0;
  while (std::getline(index, line)) {
    std::string bytes;
    const std::string path = corpus + "/" + line.substr(0, line.find('\t'));
    if (!ReadFile(path, bytes)) {
      std::fprintf(stderr, "can not read %s\n", path.c_str());
      return 1;
    }
    pages.push_back(std::make_unique<qb::FormScan>());
    if (!pages.back()->document.Assign(bytes)) return 1;
    corpusBytes += bytes.size();
  }
  if (pages.empty()) {
    std::fprintf(stderr, "no pages listed in %s/INDEX.tsv\n", corpus.c_str());
    return 1;
  }

  std::vector<std::unique_ptr<qb::FormScan>> generated;
  generated.push_back(std::make_unique<qb::FormScan>());
  if (!generated[0]->document.Assign(OneMegabytePage())) return 1;
  qb::ParseFormPage(*generated[0], "bench.example");
  const qb::FormScan& check = *generated[0];
  bool full = check.forms.size() == static_cast<std::size_t>(qb::kMaxForms);
  for (const qb::HtmlForm& form : check.forms) full = full && form.fieldCount() == qb::kMaxFieldSlots;
  if (!full) {
    std::fprintf(stderr, "generated page did not give %d forms of %d slots\n", qb::kMaxForms,
                 qb::kMaxFieldSlots);
    return 1;
  }

  std::printf("corpus:    %zu pages, %zu bytes: %.1f MB/s\n", pages.size(), corpusBytes,
              Throughput(pages, seconds));
  std::printf("generated: %zu bytes, %d forms x %d slots: %.1f MB/s\n",
              check.document.length(), qb::kMaxForms, qb::kMaxFieldSlots,
              Throughput(generated, seconds));
  return 0;
}
