// Where a docking bar stands: its side of the main window and its state. Platform-free.
#pragma once

namespace qb {

// Docking sides and bar states, as the settings file and the menus know them.
enum BarSide : int { kSideTop = 0, kSideBottom = 1, kSideLeft = 2, kSideRight = 3 };
enum BarState : int {
  kBarDockedHidden = 0,
  kBarDocked = 1,
  kBarFloating = 2,
  kBarFloatingHidden = 3,
};

// Horizontal bars reach past the client area so that their side borders are hidden.
constexpr int kBarOverhangLeft = 4;
constexpr int kBarOverhangRight = 2;

}  // namespace qb
