// Real pages from the web: each must parse into tables that respect every
// limit, and what a few of them hold is known.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "scan/form_parser.h"
#include "tests/scan/scan_limits.h"

namespace qb {
namespace {

struct CorpusPage {
  std::string path;
  int formTags = 0;  // rough counts from INDEX.tsv
  int postForms = 0;
};

// INDEX.tsv: path, bytes, form tags, POST forms and one more count per line.
std::vector<CorpusPage> CorpusIndex() {
  std::vector<CorpusPage> pages;
  std::ifstream index(std::string(QB_CORPUS_DIR) + "/INDEX.tsv");
  CorpusPage page;
  std::string bytes, rest;
  while (index >> page.path >> bytes >> page.formTags >> page.postForms && std::getline(index, rest)) {
    pages.push_back(page);
  }
  return pages;
}

void ParseCorpusPage(const std::string& relative, FormScan& scan) {
  ASSERT_EQ(LoadScanDocument(std::string(QB_CORPUS_DIR) + "/" + relative, scan.document),
            DocumentLoadStatus::kLoaded)
      << relative;
  ParseFormPage(scan, "corpus.example");
}

TEST(Corpus, EveryPageParsesWithinTheLimits) {
  const std::vector<CorpusPage> pages = CorpusIndex();
  ASSERT_EQ(pages.size(), 150u) << "corpus index not found under " << QB_CORPUS_DIR;
  int pagesWithForms = 0;
  for (const CorpusPage& page : pages) {
    FormScan scan;
    ParseCorpusPage(page.path, scan);
    EXPECT_STREQ(BrokenLimit(scan), nullptr) << page.path;
    if (page.formTags == 0 || page.postForms == 0) {
      EXPECT_TRUE(scan.forms.empty()) << page.path;
    }
    if (!scan.forms.empty()) ++pagesWithForms;
  }
  EXPECT_EQ(pagesWithForms, 96);
}

// Fields named by id only; labels in LABEL elements before each input.
TEST(Corpus, WhatAKnownPageHolds) {
  FormScan scan;
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
}

}  // namespace
}  // namespace qb
