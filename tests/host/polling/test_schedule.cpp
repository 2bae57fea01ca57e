// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Groups polled over a line whose clock the tests move: who is next, what is late, which station is left out.

#include "host/polling/schedule.h"

#include "test_class.h"

#include <QStringList>
#include <QtTest>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <vector>

using namespace host;
using std::chrono::milliseconds;

namespace {

const PollTime kStart = PollTime() + std::chrono::hours(1);

PollTime at(int ms)
{
    return kStart + milliseconds(ms);
}

int millisecondsOf(PollDuration time)
{
    return int(std::chrono::duration_cast<milliseconds>(time).count());
}

// A line on which requests take time and stations are silent as the test says.
class Line
{
public:
    int addGroup(int interval, const std::vector<int> &stations)
    {
        return schedule.addGroup(milliseconds(interval), stations, kStart);
    }

    // Runs the next request, once it is released, or only waits until then.
    std::optional<PollRequest> step()
    {
        const NextPoll next = schedule.next(at(now));
        if (!next.request) {
            now = millisecondsOf(next.release - kStart);
            return std::nullopt;
        }
        const bool isSilent = silent.count(next.request->station) > 0;
        log << QString("%1 %2%3")
                   .arg(now)
                   .arg(QChar('a' + next.request->group))
                   .arg(QChar('0' + next.request->index));
        now += duration(*next.request);
        const std::optional<StationChange> change =
            schedule.done(*next.request, isSilent ? PollOutcome::Silent : PollOutcome::Answered, at(now));
        if (change)
            log << changeText(*change);
        return next.request;
    }

    // Runs whatever begins before this time. Returns the beginnings: "30 b0" for the first request of the
    // second group after 30 ms; and what is told of stations.
    QString until(int end)
    {
        log.clear();
        while (now < end)
            step();
        return log.join(", ");
    }

    // Which stations a poll of the only group asks.
    std::vector<int> stationsOfOnePoll()
    {
        std::vector<int> asked;
        const int before = schedule.figures(0).polls;
        while (schedule.figures(0).polls == before)
            if (const std::optional<PollRequest> request = step())
                asked.push_back(request->station);
        return asked;
    }

    Schedule schedule;
    int now = 0; // milliseconds since the start
    std::set<int> silent;
    std::function<int(const PollRequest &)> duration = [](const PollRequest &) { return 10; };
    QStringList log;
};

using Stations = std::vector<int>;

} // namespace

class TestSchedule : public QObject
{
    Q_OBJECT

private slots:
    void aPollRunsEachRequestOnceAndIsReleasedEveryInterval();
    void thePollThatIsDueFirstGoesFirst();
    void ofPollsDueTogetherTheFirstGroupGoesFirst();
    void aPollOfLongRequestsIsInterruptedBetweenThem();
    void aLatePollIsCountedAndTheNextBeginsAtOnce();
    void aPollThatEndsWhenItIsDueIsNotLate();
    void aGroupThatIsAlwaysLateKeepsNoOtherFromItsFirstPoll();
    void withoutRequestsNothingIsEverDue();

    void aDeadStationIsAskedInEveryTenthPoll();
    void theOtherRequestsOfAFailedTryAreLeftOut();
    void theOtherRequestsOfAnAnsweredTryAreRun();
    void anAnswerBetweenSilencesKeepsAStationAlive();
    void theOnlyStationIsNeverLeftOut();
    void aStationThatIsLeftAloneIsAskedAgain();
    void aPollOfDeadStationsOnlyTakesNoTime();

    void replacedRequestsAreThoseOfTheNextPoll();
    void aPollBeginsAnewWithReplacedRequests();
    void aTryIsNotLostWithReplacedRequests();

    void groupsThatFitAreNeverLate();
    void aDeadStationCostsOneTimeoutInTenPolls();
};

void TestSchedule::aPollRunsEachRequestOnceAndIsReleasedEveryInterval()
{
    Line line;
    line.addGroup(100, {2, 2});
    QCOMPARE(line.until(300), QString("0 a0, 10 a1, 100 a0, 110 a1, 200 a0, 210 a1"));
    QCOMPARE(line.schedule.figures(0).polls, 3);
    QCOMPARE(line.schedule.figures(0).latePolls, 0);
    QVERIFY(line.schedule.figures(0).interval == milliseconds(100));
}

void TestSchedule::thePollThatIsDueFirstGoesFirst()
{
    Line line;
    line.addGroup(300, {2});
    line.addGroup(200, {2});
    line.addGroup(100, {2});
    QCOMPARE(line.until(250), QString("0 c0, 10 b0, 20 a0, 100 c0, 200 c0, 210 b0"));
}

void TestSchedule::ofPollsDueTogetherTheFirstGroupGoesFirst()
{
    Line line;
    line.addGroup(100, {2, 2});
    line.addGroup(100, {2});
    QCOMPARE(line.until(130), QString("0 a0, 10 a1, 20 b0, 100 a0, 110 a1, 120 b0"));
}

void TestSchedule::aPollOfLongRequestsIsInterruptedBetweenThem()
{
    Line line;
    line.addGroup(1000, {2, 2, 2});
    line.addGroup(50, {2});
    line.duration = [](const PollRequest &request) { return request.group == 0 ? 30 : 10; };
    QCOMPARE(line.until(160), QString("0 b0, 10 a0, 40 a1, 70 b0, 80 a2, 110 b0, 150 b0"));
    QCOMPARE(line.schedule.figures(1).latePolls, 0);
}

void TestSchedule::aLatePollIsCountedAndTheNextBeginsAtOnce()
{
    Line line;
    line.addGroup(100, {2});
    std::vector<int> durations = {10, 10, 250, 130};
    line.duration = [&](const PollRequest &) {
        const int duration = durations.back();
        if (durations.size() > 1)
            durations.pop_back();
        return duration;
    };
    QCOMPARE(line.until(500), QString("0 a0, 130 a0, 380 a0, 480 a0"));
    const PollFigures &figures = line.schedule.figures(0);
    QCOMPARE(figures.polls, 4);
    QCOMPARE(figures.latePolls, 2);
    QCOMPARE(millisecondsOf(figures.longestLateness), 380 - 230);
}

void TestSchedule::aPollThatEndsWhenItIsDueIsNotLate()
{
    Line line;
    line.addGroup(10, {2});
    QCOMPARE(line.until(30), QString("0 a0, 10 a0, 20 a0"));
    QCOMPARE(line.schedule.figures(0).latePolls, 0);
}

void TestSchedule::aGroupThatIsAlwaysLateKeepsNoOtherFromItsFirstPoll()
{
    Line line;
    line.addGroup(3600000, {2, 2});
    line.addGroup(5, {2});
    line.addGroup(1000, {2});
    QCOMPARE(line.until(70), QString("0 b0, 10 c0, 20 a0, 30 a1, 40 b0, 50 b0, 60 b0"));
}

void TestSchedule::withoutRequestsNothingIsEverDue()
{
    Schedule schedule;
    QVERIFY(schedule.next(kStart).release == PollTime::max());
    schedule.addGroup(milliseconds(100), {}, kStart);
    const NextPoll next = schedule.next(kStart);
    QVERIFY(!next.request);
    QVERIFY(next.release == PollTime::max());
    QCOMPARE(schedule.figures(0).polls, 0);
}

void TestSchedule::aDeadStationIsAskedInEveryTenthPoll()
{
    Line line;
    line.addGroup(100, {1, 3});
    line.silent = {3};
    const auto polls = [&line](int count, const Stations &asked) {
        for (int i = 0; i < count; ++i)
            if (line.stationsOfOnePoll() != asked)
                return false;
        return true;
    };
    const QString death = "station 3 does not answer: it is asked in every tenth poll only";
    QVERIFY(polls(3, {1, 3}));
    QCOMPARE(line.log.last(), death);
    QVERIFY(polls(9, {1}));
    QVERIFY(polls(1, {1, 3}));
    QVERIFY(polls(9, {1}));
    QCOMPARE(line.log.count(death), 1);

    line.silent = {};
    QVERIFY(polls(1, {1, 3}));
    QCOMPARE(line.log.last(), QString("station 3 answers again"));
    QVERIFY(polls(20, {1, 3}));
    QCOMPARE(line.log.count("station 3 answers again"), 1);
}

void TestSchedule::theOtherRequestsOfAFailedTryAreLeftOut()
{
    Line line;
    line.addGroup(100, {3, 3, 3, 3, 1});
    line.silent = {3};
    QVERIFY(line.stationsOfOnePoll() == Stations({3, 3, 3, 1}));
    for (int poll = 1; poll < 10; ++poll)
        QVERIFY(line.stationsOfOnePoll() == Stations({1}));
    QVERIFY(line.stationsOfOnePoll() == Stations({3, 1}));
}

void TestSchedule::theOtherRequestsOfAnAnsweredTryAreRun()
{
    Line line;
    line.addGroup(100, {3, 1, 3});
    line.silent = {3};
    for (int poll = 0; poll < 11; ++poll)
        line.stationsOfOnePoll();
    line.silent = {};
    QVERIFY(line.stationsOfOnePoll() == Stations({3, 1, 3}));
}

void TestSchedule::anAnswerBetweenSilencesKeepsAStationAlive()
{
    Line line;
    line.addGroup(100, {1, 3});
    for (int poll = 0; poll < 60; ++poll) {
        line.silent = poll % 3 == 2 ? std::set<int>() : std::set<int>({3});
        QVERIFY(line.stationsOfOnePoll() == Stations({1, 3}));
    }
}

void TestSchedule::theOnlyStationIsNeverLeftOut()
{
    Line line;
    line.addGroup(100, {3, 3});
    line.silent = {3};
    for (int poll = 0; poll < 40; ++poll)
        QVERIFY(line.stationsOfOnePoll() == Stations({3, 3}));
    QVERIFY(line.log.filter("station").isEmpty());
}

void TestSchedule::aStationThatIsLeftAloneIsAskedAgain()
{
    Line line;
    line.addGroup(100, {1, 3});
    line.silent = {3};
    for (int poll = 0; poll < 5; ++poll)
        line.stationsOfOnePoll();
    line.schedule.replaceRequests(0, {3});
    for (int poll = 0; poll < 5; ++poll)
        QVERIFY(line.stationsOfOnePoll() == Stations({3}));
}

void TestSchedule::aPollOfDeadStationsOnlyTakesNoTime()
{
    Line line;
    line.addGroup(100, {3});
    line.addGroup(100, {1});
    line.silent = {3};
    line.until(300);
    QCOMPARE(line.until(500), QString("300 b0, 400 b0"));
    QCOMPARE(line.schedule.figures(0).polls, 5);
    QCOMPARE(line.schedule.figures(0).latePolls, 0);
}

void TestSchedule::replacedRequestsAreThoseOfTheNextPoll()
{
    Line line;
    line.addGroup(100, {2, 2});
    line.until(50);
    line.schedule.replaceRequests(0, {5, 6, 7});
    QVERIFY(line.stationsOfOnePoll() == Stations({5, 6, 7}));
    line.schedule.replaceRequests(0, {});
    QVERIFY(line.schedule.next(at(1000)).release == PollTime::max());
    line.schedule.replaceRequests(0, {4});
    QVERIFY(line.stationsOfOnePoll() == Stations({4}));
}

void TestSchedule::aPollBeginsAnewWithReplacedRequests()
{
    Schedule schedule;
    schedule.addGroup(milliseconds(100), {2, 2, 2}, kStart);
    const PollRequest running = *schedule.next(at(0)).request;
    schedule.replaceRequests(0, {5, 6});
    schedule.done(running, PollOutcome::Answered, at(10));
    const PollRequest first = *schedule.next(at(10)).request;
    QCOMPARE(first.index, 0);
    QCOMPARE(first.station, 5);
    schedule.replaceRequests(0, {});
    schedule.done(first, PollOutcome::Answered, at(20));
    QVERIFY(!schedule.next(at(20)).request);
    QCOMPARE(schedule.figures(0).polls, 0);
}

void TestSchedule::aTryIsNotLostWithReplacedRequests()
{
    Line line;
    line.addGroup(100, {1, 3});
    line.silent = {3};
    for (int poll = 0; poll < 12; ++poll)
        line.stationsOfOnePoll();
    line.step(); // waits for the next poll
    QCOMPARE(line.step()->station, 1);
    line.schedule.replaceRequests(0, {1, 2, 3});
    QVERIFY(line.stationsOfOnePoll() == Stations({1, 2, 3}));
    QVERIFY(line.stationsOfOnePoll() == Stations({1, 2}));
}

// What random groups draw from.
class Draw
{
public:
    explicit Draw(unsigned seed) : random(seed) {}

    int between(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); }

    // Some of the stations 1 to 3, in any order.
    Stations stations(int most)
    {
        Stations drawn(size_t(between(1, most)));
        std::generate(drawn.begin(), drawn.end(), [this] { return between(1, 3); });
        return drawn;
    }

private:
    std::mt19937 random;
};

// Groups fit when all their polls together leave the line free for as long as its longest request lasts in
// the shortest interval: that request may run while a more urgent poll is released.
void TestSchedule::groupsThatFitAreNeverLate()
{
    constexpr int kDuration = 10;
    Draw draw(1);
    for (int lot = 0; lot < 300; ++lot) {
        Line line;
        std::vector<Stations> groups;
        int shortest = 10000;
        double load = 0;
        while (groups.size() < 5) {
            const Stations stations = draw.stations(10);
            const int interval = draw.between(20, 1000);
            const double more = double(kDuration) * double(stations.size()) / interval;
            if (load + more + double(kDuration) / std::min(shortest, interval) > 1)
                break;
            line.addGroup(interval, stations);
            groups.push_back(stations);
            shortest = std::min(shortest, interval);
            load += more;
        }
        std::vector<size_t> positions(groups.size());
        while (!groups.empty() && line.now < 20000) {
            const std::optional<PollRequest> request = line.step();
            if (!request)
                continue;
            size_t &position = positions[size_t(request->group)];
            QCOMPARE(request->index, int(position));
            position = (position + 1) % groups[size_t(request->group)].size();
        }
        for (int group = 0; group < int(groups.size()); ++group) {
            const PollFigures &figures = line.schedule.figures(group);
            QCOMPARE(figures.latePolls, 0);
            QVERIFY(figures.polls >= 20000 / int(figures.interval.count()) - 1);
        }
    }
}

// Groups of any intervals on a line that may be too slow for them. The polls between two tries are counted
// from their ends, of which each of the other groups may have one more or less than beginnings.
void TestSchedule::aDeadStationCostsOneTimeoutInTenPolls()
{
    constexpr int kTimeout = 500;
    Draw draw(2);
    for (int lot = 0; lot < 300; ++lot) {
        Line line;
        std::vector<Stations> groups;
        for (int group = draw.between(1, 4); group > 0; --group) {
            groups.push_back(draw.stations(6));
            groups.back().push_back(1); // alive
            groups.back().push_back(3); // dead
            line.addGroup(draw.between(20, 2000), groups.back());
        }
        line.silent = {3};
        line.duration = [](const PollRequest &request) { return request.station == 3 ? kTimeout : 10; };
        const auto pollsSoFar = [&line] {
            int polls = 0;
            for (int group = 0; group < line.schedule.groupCount(); ++group)
                polls += line.schedule.figures(group).polls;
            return polls;
        };
        std::map<int, int> runs; // by group, requests to the other stations
        std::vector<int> tries;  // how many polls had ended before each
        while (line.now < 100000) {
            const int polls = pollsSoFar();
            const std::optional<PollRequest> request = line.step();
            if (request && request->station == 3)
                tries.push_back(polls);
            else if (request)
                ++runs[request->group];
        }
        QCOMPARE(line.log.filter("station").size(), 1);
        for (size_t i = 4; i < tries.size(); ++i)
            QVERIFY(tries[i] - tries[i - 1] >= 10 - int(groups.size()));
        QVERIFY(int(tries.size()) <= 3 + pollsSoFar() / 10 + 1);
        for (int group = 0; group < int(groups.size()); ++group) {
            const Stations &stations = groups[size_t(group)];
            const int others = int(stations.size() - size_t(std::count(stations.begin(), stations.end(), 3)));
            const int ofEndedPolls = line.schedule.figures(group).polls * others;
            QVERIFY(runs[group] >= ofEndedPolls && runs[group] < ofEndedPolls + others + 1);
        }
    }
}

TEST_CLASS(TestSchedule)
#include "test_schedule.moc"
