#include <string>

#include <gtest/gtest.h>

#include "foundation/ObserverList.h"

using foundation::Observation;
using foundation::ObserverList;

TEST(ObserverList, TellsObserversInOrderUntilTheyStop) {
  ObserverList<std::string> list;
  std::string heard;
  Observation first = list.add([&](const std::string& change) { heard += "1" + change; });
  {
    const Observation second = list.add([&](const std::string& change) { heard += "2" + change; });
    list.notify("a");
    first = Observation();
    list.notify("b");
  }
  list.notify("c");
  EXPECT_EQ(heard, "1a2a2b");
}

TEST(ObserverList, LetsObserversChangeItAndOutliveIt) {
  Observation kept;
  int calls = 0;
  {
    ObserverList<> list;
    Observation once;
    once = list.add([&] {
      once.stop();
      kept = list.add([&] { ++calls; });
    });
    list.notify();
    list.notify();
    EXPECT_EQ(calls, 1);
  }
  kept.stop();
}
