#include "globals/WriterHandoff.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/NoThreads.hpp"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class WriterHandoffTest : public testing::Test {
 protected:
  ~WriterHandoffTest() override {
    handoff.join();
    Thread::has_failed = false;
  }

  std::atomic<int> state = Thread::never_started;
  std::binary_semaphore permit{1};
  std::thread thread;
  WriterHandoff handoff{state, permit, thread};
};

TEST_F(WriterHandoffTest, NeitherWaitsNorJoinsBeforeAWriterWasStarted) {
  handoff.wait_for_copy();
  handoff.join();
  EXPECT_EQ(state, Thread::never_started);
}

TEST_F(WriterHandoffTest, TheLoopWaitsUntilTheWriterHasItsCopy) {
  double cell = 1.0;
  double copy = 0.0;
  handoff.start([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    copy = cell;
    handoff.release();
  });
  handoff.wait_for_copy();
  cell = 2.0;
  handoff.join();
  EXPECT_EQ(copy, 1.0);
}

TEST_F(WriterHandoffTest, TheLoopDoesNotWaitForTheRestOfTheWriter) {
  std::binary_semaphore may_end{0};
  handoff.start([&] {
    handoff.release();
    may_end.acquire();
  });
  handoff.wait_for_copy();  // would never return if it waited for the end
  EXPECT_EQ(state, Thread::copy_taken);
  may_end.release();
  handoff.join();
  EXPECT_EQ(state, Thread::finished);
}

TEST_F(WriterHandoffTest, AWriterThatFinishedBeforeTheWaitStaysFinished) {
  handoff.start([&] { handoff.release(); });
  while (state != Thread::finished) std::this_thread::yield();
  handoff.wait_for_copy();
  EXPECT_EQ(state, Thread::finished);
}

TEST_F(WriterHandoffTest, AWriterStartsOnlyAfterThePreviousOneHasEnded) {
  std::vector<int> order;
  for (int i = 0; i < 50; ++i) {
    handoff.start([&, i] {
      handoff.release();
      order.push_back(i);
    });
    handoff.wait_for_copy();
  }
  handoff.join();
  ASSERT_EQ(order.size(), 50U);
  for (int i = 0; i < 50; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST_F(WriterHandoffTest, AnExceptionOfAWriterIsReportedAndAsksForTheEndOfTheRun) {
  CaptureStderr();
  handoff.start([&] {
    handoff.release();
    throw std::runtime_error("no memory for the table");
  });
  handoff.wait_for_copy();
  handoff.join();
  EXPECT_EQ(GetCapturedStderr(), "Error. A writer of results failed: no memory for the table\n");
  EXPECT_TRUE(Thread::has_failed);
  EXPECT_EQ(state, Thread::finished);
}

TEST_F(WriterHandoffTest, AWriterWithoutAThreadWritesBeforeTheLoopGoesOn) {
  CaptureStderr();
  std::vector<int> written;
  for (int i = 0; i < 3; ++i) {
    const support::NoThreads none;
    handoff.start([&, i] {
      handoff.release();
      written.push_back(i);
    });
    EXPECT_EQ(written.size(), static_cast<std::size_t>(i + 1));
    EXPECT_EQ(state, Thread::finished);
    handoff.wait_for_copy();
    handoff.join();
  }
  handoff.start([&] {
    handoff.release();
    written.push_back(3);
  });
  handoff.wait_for_copy();
  handoff.join();
  EXPECT_EQ(written, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(GetCapturedStderr(),
            "Warning: a thread that writes results couldn't be started (Resource temporarily "
            "unavailable). The run waits for such results instead; they stay the same.\n");
}

TEST(Handoff, JoinsTheWritersOfEveryKind) {
  std::atomic<int> ended = 0;
  for (WriterHandoff* kind :
       {&Handoff::gauge, &Handoff::picture, &Handoff::monitorSection, &Handoff::Umax}) {
    kind->start([&ended, kind] {
      kind->release();
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      ++ended;
    });
  }
  Handoff::wait_for_copies();
  for (const auto* state : {&Thread::state_gauge, &Thread::state_picture,
                            &Thread::state_monitorSection, &Thread::state_Umax}) {
    EXPECT_NE(state->load(), Thread::started);
  }
  Handoff::join_all();
  EXPECT_EQ(ended, 4);
}

}  // namespace
