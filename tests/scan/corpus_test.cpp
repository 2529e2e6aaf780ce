// Real pages from the web: each must parse into tables that respect every
// limit, and what a few of them hold is known.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "scan/form_parser.h"

namespace qb {
namespace {

struct CorpusPage {
  std::string path;
  int formTags = 0;   // rough counts from INDEX.tsv
  int postForms = 0;
};

std::vector<CorpusPage> CorpusIndex() {
  std::vector<CorpusPage> pages;
  std::ifstream index(std::string(QB_CORPUS_DIR) + "/INDEX.tsv");
  std::string line;
  while (std::getline(index, line)) {
    std::istringstream columns(line);
    CorpusPage page;
    std::string bytes;
    if (std::getline(columns, page.path, '\t') && std::getline(columns, bytes, '\t') &&
        columns >> page.formTags >> page.postForms) {
      pages.push_back(page);
    }
  }
  return pages;
}

void ParseCorpusPage(const std::string& relative, FormScan& scan) {
  ASSERT_EQ(LoadScanDocument(std::string(QB_CORPUS_DIR) + "/" + relative, scan.document),
            LoadStatus::kLoaded)
      << relative;
  ParseFormPage(scan, "corpus.example");
}

void ExpectWithinLimits(const FormScan& scan, const std::string& page) {
  const std::size_t length = scan.document.length();
  ASSERT_LE(scan.forms.size(), static_cast<std::size_t>(kMaxForms)) << page;
  ScanPosition previousEnd = 0;
  for (const HtmlForm& form : scan.forms) {
    EXPECT_TRUE(form.valid) << page;
    EXPECT_EQ(TextOf(form.action).rfind("http", 0), 0u) << page;
    ASSERT_GE(form.fieldCount(), 1) << page;
    ASSERT_LE(form.fieldCount(), kMaxFieldSlots) << page;
    EXPECT_EQ(form.fields[0].kind, kFieldForm) << page;
    for (const FormField& field : form.fields) {
      EXPECT_LE(previousEnd, field.tagStart) << page;
      EXPECT_LT(field.tagStart, field.tagEnd) << page;
      EXPECT_LE(TextOf(field.label).size(), kMaxLabelBytes) << page;
      previousEnd = field.tagEnd;
    }
    EXPECT_LE(previousEnd, form.end) << page;
    EXPECT_LE(form.end, length) << page;
    previousEnd = form.end;
  }
  EXPECT_LE(scan.selects.size(), static_cast<std::size_t>(kMaxSelects)) << page;
  for (const auto& options : scan.selects) {
    EXPECT_LE(options.size(), static_cast<std::size_t>(kMaxOptions)) << page;
  }
  EXPECT_LE(scan.scripts.size(), static_cast<std::size_t>(kMaxScripts)) << page;
  for (const ScriptBlock& script : scan.scripts) {
    EXPECT_LT(script.start, script.end) << page;
    EXPECT_LE(script.end, length) << page;
  }
  EXPECT_LE(scan.tablePrefix.size(), kMaxTablePrefixBytes) << page;
}

TEST(Corpus, EveryPageParsesWithinTheLimits) {
  const std::vector<CorpusPage> pages = CorpusIndex();
  ASSERT_EQ(pages.size(), 150u) << "corpus index not found under " << QB_CORPUS_DIR;
  int pagesWithForms = 0;
  for (const CorpusPage& page : pages) {
    FormScan scan;
    ParseCorpusPage(page.path, scan);
    ExpectWithinLimits(scan, page.path);
    if (page.formTags == 0 || page.postForms == 0) {
      EXPECT_TRUE(scan.forms.empty()) << page.path;
    }
    if (!scan.forms.empty()) ++pagesWithForms;
  }
  EXPECT_GT(pagesWithForms, 90);
}

TEST(Corpus, WhatKnownPagesHold) {
  FormScan scan;
  // Fields named by id only; labels in LABEL elements before each input.
  ParseCorpusPage("chromium/000_i18n_de.html", scan);
  ASSERT_EQ(scan.forms.size(), 1u);
  const HtmlForm& german = scan.forms[0];
  EXPECT_EQ(TextOf(german.action), "http://www.google.com/");
  ASSERT_EQ(german.fieldCount(), 18);
  EXPECT_EQ(german.fields[1].kind, kFieldText);
  EXPECT_EQ(german.fields[1].name, kNoBlock);
  EXPECT_EQ(TextOf(german.fields[1].label), "Vorname: ");
  EXPECT_EQ(TextOf(german.fields[4].label), "Stra\xc3\x9f" "e und Hausnummer: ");
  EXPECT_FALSE(german.hasSubmit);

  // Eleven POST forms: only the first eight are kept.
  ParseCorpusPage("chromium/181_cc_forms.html", scan);
  EXPECT_EQ(scan.forms.size(), static_cast<std::size_t>(kMaxForms));
}

}  // namespace
}  // namespace qb
