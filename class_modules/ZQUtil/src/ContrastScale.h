// Contrast in the board's units and in the steps that the user sees.
#ifndef ZQUTIL_CONTRAST_SCALE_H
#define ZQUTIL_CONTRAST_SCALE_H

#include <cstdint>

// Step 1..10 of a board value. A value off the board's scale, below it too, is step 10.
constexpr int32_t ContrastStepOfBoard(int32_t board) {
  switch (board) {
    case 16:
      return 1;
    case 17:
    case 18:
      return 2;
    case 19:
      return 3;
    case 20:
    case 21:
      return 4;
    case 22:
    case 23:
      return 5;
    case 24:
    case 25:
      return 6;
    case 26:
    case 27:
      return 7;
    case 28:
      return 8;
    case 29:
      return 9;
    default:
      return 10;
  }
}

// Board value 16..30 of a step. A number that is no step is the top.
constexpr int32_t ContrastBoardOfStep(int32_t step) {
  constexpr int32_t kBoard[] = {16, 16, 17, 19, 21, 23, 25, 27, 28, 29};
  constexpr int32_t kSteps = sizeof kBoard / sizeof kBoard[0];
  return step >= 0 && step < kSteps ? kBoard[step] : 30;
}

#endif
