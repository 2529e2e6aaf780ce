// hlpwrite --title TITLE OUT.HLP CONTENTS.txt [TOPIC.txt ...]: writes a WinHelp
// file from help topic sources (see tools/helpfile/help_source.h). The first
// topic is the contents topic. The build writes QBHELP.HLP with it.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tools/helpfile/help_source.h"
#include "tools/helpfile/hlp_writer.h"

int main(int argc, char** argv) {
  if (argc < 5 || std::strcmp(argv[1], "--title") != 0) {
    std::fprintf(stderr, "usage: hlpwrite --title TITLE OUT.HLP CONTENTS.txt [TOPIC.txt ...]\n");
    return 2;
  }
  qb::help::Project project;
  project.title = argv[2];
  const char* output = argv[3];
  std::string error;
  for (int i = 4; i < argc; ++i) {
    std::ifstream in(argv[i], std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "hlpwrite: can't read %s\n", argv[i]);
      return 1;
    }
    const std::string text(std::istreambuf_iterator<char>(in), {});
    qb::help::Topic topic;
    if (!qb::help::ParseTopic(argv[i], text, topic, error)) {
      std::fprintf(stderr, "hlpwrite: %s\n", error.c_str());
      return 1;
    }
    project.topics.push_back(std::move(topic));
  }
  std::vector<std::uint8_t> file;
  if (!qb::help::WriteHelpFile(project, file, error)) {
    std::fprintf(stderr, "hlpwrite: %s\n", error.c_str());
    return 1;
  }
  std::ofstream out(output, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  out.close();
  if (!out) {
    std::fprintf(stderr, "hlpwrite: can't write %s\n", output);
    std::remove(output);
    return 1;
  }
  return 0;
}
