// Stands in for the user's browser in the scan tests: appends the arguments it was
// given, one line per start, to "opened.txt" in its working folder (the program
// folder the scan starts it in).
#include <cstdio>
#include <string>

int main(int argc, char** argv) {
  std::string line;
  // Arguments apart by "|", which no path holds: a path cut at its blanks shows.
  for (int i = 1; i < argc; ++i) line += (i > 1 ? "|" : "") + std::string(argv[i]);
  std::FILE* out = std::fopen("opened.txt", "a");
  if (!out) return 1;
  std::fprintf(out, "%s\n", line.c_str());
  std::fclose(out);
  return 0;
}
