// makekeydb KEYS.txt OUT.dat: turns a readable key list (see keys/key_text.h) into
// a key database, such as the sample database the program is shipped with.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "base/user_message.h"
#include "keys/key_file.h"
#include "keys/key_text.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: makekeydb KEYS.txt OUT.dat\n");
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "makekeydb: can't read %s\n", argv[1]);
    return 1;
  }
  const std::string text(std::istreambuf_iterator<char>(in), {});
  qb::KeyTable& table = qb::Keys();
  std::string error;
  if (!qb::ParseKeyText(text, table, error)) {
    std::fprintf(stderr, "makekeydb: %s, %s\n", argv[1], error.c_str());
    return 1;
  }
  if (!qb::SaveDatabase(argv[2], table)) {
    for (const qb::UserMessage& m : qb::TakeUserMessages()) {
      std::fprintf(stderr, "makekeydb: %s: %s\n", argv[2], m.text.c_str());
    }
    return 1;
  }
  std::printf("%s: %d keys\n", argv[2], table.count);
  return 0;
}
