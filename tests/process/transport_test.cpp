// What a channel is made of, each by itself: events, the mutex with its levels, the section.
#include <array>

#include "kwt/printer_handle.h"
#include "kwt/shared_memory.h"
#include "precompiled.h"

namespace {

using namespace kwt;

const WideText kTooLong(MAX_PATH, TEXT('n'));

TEST(Transport, Without_an_object_nothing_is_waited_for) {
    const auto expectRefused = [](auto& object) {
        EXPECT_TRUE(object.IsValid());
        EXPECT_FALSE(object.Create(kTooLong.c_str(), false));
        EXPECT_EQ(206u, GetLastError());
        EXPECT_FALSE(object.IsValid()) << "what it had is closed";
    };
    WinEventAuto event;
    WinMutex mutex;
    expectRefused(event);
    expectRefused(mutex);
    EXPECT_EQ(WaitResult::NoObject, event.Wait(0));
    EXPECT_EQ(WaitResult::NoObject, mutex.Lock(0));
}

TEST(Transport, An_event_is_made_anew_and_reset_before_a_wait_that_asks_for_it) {
    WinEvent event(TEXT("TransportEvent"), false);
    event.Set();
    EXPECT_EQ(WaitResult::Signaled, event.Wait(0));
    EXPECT_EQ(WaitResult::TimedOut, event.ResetAndWait(0));
    event.Set();
    EXPECT_TRUE(event.Create(TEXT("TransportEvent"), false));
    EXPECT_FALSE(event.IsSignaled()) << "the one before was closed first";
    WinEventAuto once(TEXT("TransportOnce"), false);
    once.Set();
    EXPECT_FALSE(once.IsSignaled()) << "that would take the signal";
    EXPECT_EQ(WaitResult::Signaled, once.Wait(0));
    EXPECT_EQ(WaitResult::TimedOut, once.Wait(0));
}

TEST(Transport, A_wait_for_several_tells_the_place_of_the_one_that_ended_it) {
    std::array<WinEventAuto, MAXIMUM_WAIT_OBJECTS + 1> events;
    std::array<WinEvent*, events.size()> all;
    for (size_t i = 0; i < all.size(); ++i)
        all[i] = &events[i];
    uint32_t index = 7;
    const auto wait = [&](uint32_t count) { return WaitForEvents(count, all.data(), false, index, 0, true); };
    EXPECT_EQ(WaitResult::TimedOut, wait(64));
    EXPECT_EQ(0u, index);
    events[63].Set();
    EXPECT_EQ(WaitResult::Signaled, wait(64));
    EXPECT_EQ(63u, index);
    EXPECT_EQ(WaitResult::Failed, wait(65));
    EXPECT_EQ(WaitResult::Failed, wait(0));
    events[5].Init();
    EXPECT_EQ(WaitResult::NoObject, wait(64));
    EXPECT_EQ(5u, index);
}

TEST(Transport, A_mutex_counts_the_levels_of_its_owner_and_outlives_it) {
    const WCHAR* const name = TEXT("TransportMutex");
    WinMutex mutex(name, false);
    WinMutex other(name, false);
    const auto onThread = [](const auto& body) { std::thread(body).join(); };
    const auto expectFree = [&] {
        EXPECT_FALSE(mutex.IsLocked());
        EXPECT_EQ(0u, mutex.GetOwnerProcessId());
        EXPECT_EQ(0u, mutex.GetOwnerThreadId());
    };
    expectFree();
    for (int level = 0; level < 2; ++level)
        EXPECT_EQ(WaitResult::Signaled, mutex.Lock(0));
    EXPECT_EQ(1u, mutex.Unlock());
    EXPECT_TRUE(mutex.IsLockedByCurrentThread());
    onThread([&] { EXPECT_EQ(WaitResult::TimedOut, other.Lock(0)); });
    EXPECT_EQ(0u, mutex.Unlock());
    expectFree();

    onThread([&] { EXPECT_EQ(WaitResult::Signaled, mutex.Lock(0)); });
    EXPECT_EQ(1u, mutex.Unlock()) << "it is another's";
    EXPECT_EQ(WaitResult::Abandoned, other.Lock(0));
    onThread([&] {
        EXPECT_EQ(WaitResult::Signaled, other.Lock(0)) << "nobody holds it";
        EXPECT_EQ(0u, other.Unlock());
    });
    mutex.Close();
    EXPECT_FALSE(mutex.IsValid());
    expectFree();
}

TEST(Transport, A_section_tells_the_other_side_only_what_it_is_asked_to) {
    const WCHAR* const name = TEXT("TransportSection");
    WinEventAuto notified(TEXT("TransportSectionNotifyEvent"), false);
    SharedMemory section;
    EXPECT_FALSE(section.IsValid());
    EXPECT_EQ(nullptr, section.Lock(SectionAccess::Write, 0));
    EXPECT_EQ(0u, GetLastError()) << "there is no block, but it may be written to";
    section.Unlock(false);
    ASSERT_TRUE(section.Create(name, 100, true, false));
    EXPECT_EQ(0u, GetLastError());

    struct Row {
        SectionAccess access;
        bool notify, before, after;
    };
    for (const Row& row : {Row{SectionAccess::Read, false, true, true},
                           {SectionAccess::Read, true, true, false},
                           {SectionAccess::Write, false, false, false},
                           {SectionAccess::Write, true, false, true}}) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(row.access) << row.notify);
        row.before ? notified.Set() : notified.Reset();
        EXPECT_NE(nullptr, section.Lock(row.access, 0));
        EXPECT_TRUE(section.Unlock(row.notify));
        EXPECT_EQ(row.after ? WaitResult::Signaled : WaitResult::TimedOut, notified.Wait(0));
    }
    notified.Set();
    section.Cancel();
    for (const auto& [result, error] :
         {std::pair(WaitResult::Abandoned, 995u), {WaitResult::Signaled, 0u}, {WaitResult::TimedOut, 258u}}) {
        EXPECT_EQ(result, section.WaitForNotify(0));
        EXPECT_EQ(error, GetLastError());
    }
    {
        SharedMemory writer;
        ASSERT_TRUE(writer.Create(name, 100, true, false));
        EXPECT_EQ(183u, GetLastError());
        EXPECT_NE(nullptr, writer.Lock(SectionAccess::Write, 0));
    }
    EXPECT_EQ(WaitResult::Signaled, notified.Wait(0)) << "the end of a writer is the end of its lock";

    SharedMemory reader;
    ASSERT_TRUE(reader.Create(name, 100, false, false));
    EXPECT_EQ(nullptr, reader.Lock(SectionAccess::Write, 0));
    EXPECT_EQ(5u, GetLastError());
    EXPECT_NE(nullptr, reader.Lock(SectionAccess::Read, 0));
    EXPECT_FALSE(reader.Create(name, 10000, true, false));
    EXPECT_EQ(1610u, GetLastError());
    EXPECT_FALSE(reader.IsValid());
    section.Init();
    ASSERT_TRUE(reader.Create(name, 100, true, false));
    EXPECT_EQ(0u, GetLastError()) << "nobody had it any more";
    reader.Close();
    EXPECT_FALSE(reader.IsValid());
}

TEST(Transport, A_printer_that_cannot_be_opened_leaves_the_reason_and_no_name_none) {
    for (const auto& [name, error] : {std::pair(TEXT("Nobody"), 1801u), {TEXT(""), 0u}, {nullptr, 0u}}) {
        SetLastError(ERROR_ACCESS_DENIED);
        EXPECT_EQ(nullptr, PrinterHandleClass(name, nullptr).GetHandle());
        EXPECT_EQ(error, GetLastError());
        EXPECT_FALSE(WakeUpLanguageMonitor(name));
    }
}

}  // namespace
