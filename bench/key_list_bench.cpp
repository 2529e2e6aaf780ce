// Filling the Keys view with 2000 keys in each sort order, in a real main window:
// the rows inserted and the visible ones drawn (each asks for its Name). The
// table is shuffled again before each fill, so the Ascending and Descending fills
// include the whole insertion sort on the Names.
//   key_list_bench [RUNS]     (under Wine: build/win/wine-run.sh build/win/bench/key_list_bench.exe)
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "app/frame.h"
#include "base/app_state.h"
#include "keys/database_slots.h"
#include "keys/key_list.h"
#include "keys/key_view_rules.h"

namespace {

using namespace qb;

// The same Names every run, in an order of their own.
void FillShuffled(unsigned seed) {
  KeyTable& table = Keys();
  ClearAllKeys(table);
  std::vector<int> order(kMaxKeys);
  for (int i = 0; i < kMaxKeys; ++i) order[i] = i;
  for (int i = kMaxKeys - 1; i > 0; --i) {
    seed = seed * 1103515245u + 12345u;
    std::swap(order[i], order[(seed >> 8) % static_cast<unsigned>(i + 1)]);
  }
  for (int i = 0; i < kMaxKeys; ++i) {
    char name[32];
    std::snprintf(name, sizeof(name), "%s key %04d", (order[i] % 3) ? "Form" : "mail", order[i]);
    table.fields[kName][i] = MakeTextBlock(name);
    table.fields[kDescription][i] = MakeTextBlock("description");
  }
  table.count = kMaxKeys;
}

// What a running program would have handled between two fills.
void Pump() {
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&msg);
}

double Milliseconds(const LARGE_INTEGER& from, const LARGE_INTEGER& to, const LARGE_INTEGER& f) {
  return 1000.0 * static_cast<double>(to.QuadPart - from.QuadPart) / static_cast<double>(f.QuadPart);
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
  HINSTANCE instance = GetModuleHandleA(nullptr);
  char folder[MAX_PATH] = {};
  GetTempPathA(sizeof(folder), folder);
  SetProgramDirectory(folder);
  Settings() = AppSettings{};
  Settings().windowRect = {0, 0, 900, 700};
  if (!RegisterMainClass(instance) || !RegisterBarClasses(instance)) return 1;
  HWND window = CreateMainWindow(instance, SW_SHOWNORMAL);
  if (!window) return 1;
  CreateKeyListColumn(App().keysView);
  // No file behind it: the name only lets the list fill.
  SetSlotNameText(CurrentSlotName(), "Bench.dat");

  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  FillShuffled(0);  // the first fill pays for loading the controls' code
  FillKeyList();
  Pump();
  std::printf("Keys view filled with %d keys, %d runs each (ms)\n", kMaxKeys, runs);
  for (int order = 0; order < kSortOrderCount; ++order) {
    std::vector<double> ms;
    for (int run = 0; run < runs; ++run) {
      FillShuffled(static_cast<unsigned>(run + 1));
      SetKeySortOrder(order);
      Pump();
      LARGE_INTEGER start, filled, end;
      QueryPerformanceCounter(&start);
      FillKeyList();
      QueryPerformanceCounter(&filled);
      UpdateWindow(App().keysView);
      QueryPerformanceCounter(&end);
      ms.push_back(Milliseconds(start, end, frequency));
      if (getenv("QB_BENCH_PHASES")) std::printf("    fill %.2f paint %.2f\n", Milliseconds(start, filled, frequency), Milliseconds(filled, end, frequency));
      if (ListView_GetItemCount(App().keysView) != kMaxKeys) return 2;
    }
    std::sort(ms.begin(), ms.end());
    std::printf("  %-10s median %7.2f   min %7.2f   max %7.2f\n", SortOrderName(order), ms[ms.size() / 2],
                ms.front(), ms.back());
  }
  ClearAllKeys(Keys());
  DestroyWindow(window);
  return 0;
}
