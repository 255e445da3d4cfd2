#include "utils/WriterThread.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <semaphore>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/NoThreads.hpp"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(WriterThread, HasNothingToWaitForAtFirst) {
  utils::WriterThread writer;
  writer.wait();
  EXPECT_FALSE(writer.has_failed());
}

TEST(WriterThread, TheLoopGoesOnWhileAResultIsWritten) {
  utils::WriterThread writer;
  std::binary_semaphore may_end{0};
  bool is_written = false;
  writer.hand_over([&] {
    may_end.acquire();
    is_written = true;
    return true;
  });
  may_end.release();  // would never be reached if the loop waited for the end
  writer.wait();
  EXPECT_TRUE(is_written);
}

TEST(WriterThread, IsBusyUntilItsWorkIsDone) {
  utils::WriterThread writer;
  EXPECT_FALSE(writer.is_busy());
  std::binary_semaphore may_end{0};
  writer.hand_over([&] {
    may_end.acquire();
    return true;
  });
  EXPECT_TRUE(writer.is_busy());
  may_end.release();
  writer.wait();
  EXPECT_FALSE(writer.is_busy());
}

TEST(WriterThread, TakesOnePieceOfWorkAfterTheOther) {
  utils::WriterThread writer;
  std::vector<int> order;
  for (int i = 0; i < 50; ++i) {
    writer.hand_over([&, i] {
      order.push_back(i);
      return true;
    });
  }
  writer.wait();
  ASSERT_EQ(order.size(), 50U);
  for (int i = 0; i < 50; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(WriterThread, IsOneThreadForAllItsWork) {
  utils::WriterThread writer;
  std::set<std::thread::id> threads;
  for (int i = 0; i < 20; ++i) {
    writer.hand_over([&] {
      threads.insert(std::this_thread::get_id());
      return true;
    });
  }
  writer.wait();
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

TEST(WriterThread, FinishesItsWorkBeforeItsEnd) {
  bool is_written = false;
  {
    utils::WriterThread writer;
    writer.hand_over([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      is_written = true;
      return true;
    });
  }
  EXPECT_TRUE(is_written);
}

TEST(WriterThread, RemembersThatAResultWasLost) {
  utils::WriterThread writer;
  writer.hand_over([] { return false; });
  writer.wait();
  EXPECT_TRUE(writer.has_failed());
  writer.hand_over([] { return true; });
  writer.wait();
  EXPECT_TRUE(writer.has_failed());
  utils::WriterThread of_another_kind;
  EXPECT_FALSE(of_another_kind.has_failed());
  of_another_kind.note_failure();
  EXPECT_TRUE(of_another_kind.has_failed());
}

TEST(WriterThread, SaysAnExceptionOfItsWorkWhichIsALostResult) {
  CaptureStderr();
  utils::WriterThread writer;
  writer.hand_over([]() -> bool { throw std::runtime_error("no memory for the table"); });
  writer.wait();
  EXPECT_EQ(GetCapturedStderr(), "Error. A writer of results failed: no memory for the table\n");
  EXPECT_TRUE(writer.has_failed());
}

TEST(WriterThread, WithoutAThreadTheWorkIsDoneBeforeTheLoopGoesOn) {
  CaptureStderr();
  utils::WriterThread writer;
  std::vector<int> written;
  const auto write = [&](int i) {
    writer.hand_over([&written, i] {
      written.push_back(i);
      return i != 2;
    });
  };
  for (int i = 0; i < 3; ++i) {
    const support::NoThreads none;
    write(i);
    EXPECT_EQ(written.size(), static_cast<std::size_t>(i + 1));
  }
  EXPECT_TRUE(writer.has_failed());
  write(3);
  writer.wait();
  EXPECT_EQ(written, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(GetCapturedStderr(),
            "Warning: a thread that writes results couldn't be started (Resource temporarily "
            "unavailable). The run waits for such results instead; they stay the same.\n");
}

TEST(WriterThread, AsksForThePiecesOfItsWorkAsTheyCome) {
  using Piece = utils::WriterThread::Piece;
  utils::WriterThread writer;
  std::vector<int> written;
  int asked = 0;
  bool is_there = true;
  std::binary_semaphore may_end{0};
  writer.hand_over_pieces([&]() -> std::optional<Piece> {
    if (!is_there) return {};
    return Piece{[&, number = asked++] {
                   if (number == 0) may_end.acquire();
                   written.push_back(number);
                   return number != 1;
                 },
                 asked == 4};
  });
  for (int step = 0; step < 3; ++step) utils::go_on_with_writers();
  EXPECT_EQ(asked, 1);  // while the first one is under way
  EXPECT_TRUE(writer.is_busy());
  is_there = false;
  may_end.release();
  for (int step = 0; step < 3; ++step) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    utils::go_on_with_writers();
  }
  EXPECT_EQ(asked, 1);
  EXPECT_TRUE(writer.is_busy());  // the rest is still to come
  is_there = true;
  writer.wait();
  EXPECT_EQ(written, (std::vector<int>{0, 1}));  // nothing behind the one that failed
  EXPECT_EQ(asked, 4);
  EXPECT_FALSE(writer.is_busy());
  EXPECT_TRUE(writer.has_failed());
}

TEST(WriterThread, PiecesThatCannotBeHadAreAFailure) {
  using Piece = utils::WriterThread::Piece;
  utils::WriterThread writer;
  int asked = 0;
  CaptureStderr();
  writer.hand_over_pieces([&]() -> std::optional<Piece> {
    if (++asked == 2) throw std::runtime_error("a rank is lost");
    return Piece{[] { return true; }, false};
  });
  writer.wait();
  EXPECT_EQ(GetCapturedStderr(), "Error. A writer of results failed: a rank is lost\n");
  EXPECT_TRUE(writer.has_failed());
  EXPECT_FALSE(writer.is_busy());
  EXPECT_EQ(asked, 2);
}

TEST(WriterThread, GoesOnWithOthersWhileItWaits) {
  using Piece = utils::WriterThread::Piece;
  utils::WriterThread results;
  int pieces = 0;
  results.hand_over_pieces([&]() -> std::optional<Piece> {
    ++pieces;
    return Piece{[] { return true; }, pieces == 5};
  });
  utils::WriterThread checkpoint;
  checkpoint.hand_over([&] {
    results.wait();  // in another thread, which cannot go on with them
    return true;
  });
  checkpoint.wait();
  EXPECT_EQ(pieces, 5);
}

TEST(WriterThread, FinishesThePiecesOfItsWorkBeforeItsEnd) {
  using Piece = utils::WriterThread::Piece;
  int pieces = 0, written = 0;
  {
    utils::WriterThread writer;
    writer.hand_over_pieces([&]() -> std::optional<Piece> {
      if (++pieces % 2 == 0) return {};
      return Piece{[&] { return ++written > 0; }, pieces == 9};
    });
  }
  EXPECT_EQ(written, 5);
}

TEST(WaitForWriters, WaitsForAllOfThem) {
  std::atomic<int> ended = 0;
  utils::WriterThread writers[4];
  for (utils::WriterThread& writer : writers) {
    writer.hand_over([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      ++ended;
      return true;
    });
  }
  utils::wait_for_writers();
  EXPECT_EQ(ended, 4);
}

}  // namespace
