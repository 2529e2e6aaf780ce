#include "scan/page_encoding.h"

#include <gtest/gtest.h>

#include <string>

namespace qb {
namespace {

TEST(IsUtf8Page, ByteOrderMarkThenHeaderThenMeta) {
  const std::string latin1Header = "HTTP/1.0 200 OK\r\nContent-Type: text/html; charset=ISO-8859-1\r\n\r\n";
  const std::string plainHeader = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nServer: x\r\n\r\n";
  const std::string meta = "<meta charset=\"utf-8\">";
  const std::pair<std::string, bool> cases[] = {  // the saved page, whether it is UTF-8
      {"HTTP/1.0 200 OK\r\nContent-Type: text/html; charset=UTF-8\r\n\r\n<html>", true},
      {"HTTP/1.1 200 OK\ncontent-type:text/html;charset=\"utf8\"\n\n<p>", true},  // LF lines, quoted label
      {"HTTP/1.0 200 OK\r\r\nContent-Type: text/html; charset=utf-8\r\r\n\r\r\n<p>", true},  // saved in text mode
      {latin1Header + meta, false},                                          // the header over the page
      {plainHeader + meta, true},                                            // a header without charset
      {plainHeader + "\xEF\xBB\xBF<html>", true},
      {latin1Header + "\xEF\xBB\xBF<html>", true},  // the mark over the header, as browsers read it
      {"\xFF\xFE" + meta, false},
      {"HTTP/1.0 200 OK\r\nContent-Type: text/html; charset=utf-8", false},  // a header that never ends
      {"<html><head><META CHARSET=UTF-8>", true},
      {"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\">", true},
      {"<meta content='text/html;charset=utf-8' http-equiv=content-type>", true},
      {"<meta content=\"text/html; charset=utf-8\">", false},  // content alone declares nothing
      {"<meta name=\"description\" content=\"charset=utf-8\">", false},
      {"<meta charset=windows-1252><meta charset=utf-8>", false},  // the first declaration counts
      {"<meta content=\"text/html; charset = utf-8\" http-equiv=content-type>", true},
      {"<p>1 <2 <meta charset=utf-8>", true},  // "<" and no letter is text, not a tag
      {"<!-- <meta charset=utf-8> -->", false},
      {"<?x <meta charset=utf-8>", false},  // read past up to the first ">", as a comment is
      {"<!doctype x <meta charset=utf-8>", false},
      {"<div title=\"<meta charset=utf-8>\">", false},
      {"<meta charset=\"utf-8", false},
      {std::string(kCharsetPrescanBytes - meta.size(), ' ') + meta, true},
      {std::string(kCharsetPrescanBytes - meta.size() + 1, ' ') + meta, false},
      {"", false},
  };
  for (const auto& [saved, utf8] : cases) EXPECT_EQ(IsUtf8Page(saved), utf8) << saved;
}

TEST(Windows1252ToUtf8, EveryRangeOfTheCodePage) {
  const std::pair<const char*, const char*> cases[] = {
      {"plain", "plain"},       {"M\xFCller", "M\xC3\xBCller"}, {"\x80", "\xE2\x82\xAC"},
      {"\x9F", "\xC5\xB8"},     {"\x81", "\xC2\x81"},           {"\xA0\xFF", "\xC2\xA0\xC3\xBF"},
  };
  for (const auto& [ansi, utf8] : cases) EXPECT_EQ(Windows1252ToUtf8(ansi), utf8) << ansi;
}

}  // namespace
}  // namespace qb
