#include "case/reference.hpp"

#include <gtest/gtest.h>

TEST(Reference, IsACodeOfEpsg) {
  EXPECT_EQ(cases::epsg_of("EPSG:32632"), 32632);
  EXPECT_EQ(cases::epsg_of("epsg:2056"), 2056);
  for (const char* text : {"", "32632", "EPSG:", "EPSG:x", "EPSG:0", "EPSG:-1", "EPSG:123456789",
                           "EPSG:1:2", "EPSG 32632", "EPSG: 32632", "ESRI:102003"}) {
    EXPECT_FALSE(cases::epsg_of(text)) << text;
  }
}

TEST(Epoch, IsADateOfTheCalendar) {
  EXPECT_EQ(cases::epoch_of("2026-05-01T06:00:00Z"), "2026-05-01 06:00:00");
  EXPECT_EQ(cases::epoch_of("2026-05-01 06:00:00"), "2026-05-01 06:00:00");
  EXPECT_TRUE(cases::epoch_of("2024-02-29T23:59:59Z"));
  for (const char* text :
       {"", "yesterday", "2026-05-01", "2026-05-01T06:00:00", "2026-05-01T06:00:00+02:00",
        "2025-02-29T00:00:00Z", "2026-13-01T00:00:00Z", "2026-00-01T00:00:00Z",
        "2026-05-01T24:00:00Z", "2026-05-01T06:60:00Z", "2026-05-01T06:00:60Z"}) {
    EXPECT_FALSE(cases::epoch_of(text)) << text;
  }
}
