#include <gtest/gtest.h>

#include <QApplication>

#include "app/shared/LookStyle.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setStyle(new corvane::LookStyle);
  return RUN_ALL_TESTS();
}
