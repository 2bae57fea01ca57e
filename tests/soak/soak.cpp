// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver against its model for as long as one likes. No time passes for pauses and time-outs.
//
//   soak [--model] [--seed N] [--from CHAPTER] [EXCHANGES]
//
// Prints a digest of everything that was sent, received and returned, for each chapter and for all of them:
// the same on every machine when the seed is the same. Ends with 0 when nothing differed and nothing grew,
// with 1 when something did, with 2 when it was asked wrongly, with 130 when it was interrupted.

#include "chapter.h"
#include "process_state.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QElapsedTimer>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <optional>
#include <unistd.h>

namespace {

const qint64 kUsualExchanges = 1000000;
const int kLooksPerSecond = 4; // of the progress
enum ExitCode { kFine, kWrong, kUsage, kInterrupted = 130 };

volatile std::sig_atomic_t g_isInterrupted = 0;

void interrupt(int)
{
    g_isInterrupted = 1;
}

void print(const QString &text)
{
    std::fputs(qPrintable(text), stdout);
    std::fflush(stdout);
}

struct Wishes
{
    soak::Kind kind = soak::kFaultyLine;
    quint32 seed = 1;
    qint64 from = 0;
    qint64 exchanges = kUsualExchanges;
};

std::optional<qint64> numberFrom(const QString &text, qint64 limit)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    if (isNumber && number >= 0 && number <= limit)
        return number;
    std::fprintf(stderr, "soak: %s is no number from 0 to %lld\n", qPrintable(text),
                 static_cast<long long>(limit));
    return std::nullopt;
}

// Null when the wishes cannot be understood, which was said.
std::optional<Wishes> wishes(const QCoreApplication &application)
{
    const qint64 limit = 1000000000000;
    QCommandLineParser parser;
    parser.setApplicationDescription("The driver against its model, in simulated time.");
    parser.addHelpOption();
    parser.addPositionalArgument("EXCHANGES", "how many reads and writes; 1000000 unless given",
                                 "[EXCHANGES]");
    parser.addOption({"model", "any request and any answer, not good ones on a faulty line"});
    parser.addOption({"seed", "draw as with this number; 1 unless given", "N", "1"});
    parser.addOption({"from", "begin with this chapter; 0 unless given", "CHAPTER", "0"});
    const bool isUnderstood = parser.parse(application.arguments());
    if (!isUnderstood || parser.positionalArguments().size() > 1) {
        std::fprintf(stderr, "soak: %s\nhint: scripts/soak --seed 7 10000000\n",
                     isUnderstood ? "only one number of exchanges is taken" : qPrintable(parser.errorText()));
        return std::nullopt;
    }
    if (parser.isSet("help"))
        parser.showHelp();
    const std::optional<qint64> seed = numberFrom(parser.value("seed"), 0xffffffff);
    const std::optional<qint64> from = numberFrom(parser.value("from"), 0xffffffff);
    const std::optional<qint64> exchanges =
        numberFrom(parser.positionalArguments().value(0, QString::number(kUsualExchanges)), limit);
    if (!seed || !from || !exchanges)
        return std::nullopt;
    return Wishes{parser.isSet("model") ? soak::kAnything : soak::kFaultyLine, quint32(*seed), *from,
                  *exchanges};
}

// On a terminal, in one line that the next one overwrites.
class Progress
{
public:
    explicit Progress(qint64 exchanges) : all(exchanges), isShown(isatty(STDERR_FILENO) != 0)
    {
        time.start();
    }

    void show(qint64 done)
    {
        if (!isShown || time.elapsed() < lastShown + 1000 / kLooksPerSecond)
            return;
        lastShown = time.elapsed();
        std::fprintf(stderr, "\r%lld of %lld exchanges, %lld a second \r", static_cast<long long>(done),
                     static_cast<long long>(all), static_cast<long long>(done * 1000 / lastShown));
    }

    double seconds() const { return double(time.elapsed()) / 1000; }

private:
    qint64 all;
    bool isShown;
    qint64 lastShown = 0;
    QElapsedTimer time;
};

class Soak
{
public:
    explicit Soak(const Wishes &wanted) : wishes(wanted), progress(wanted.exchanges) {}

    ExitCode run()
    {
        print(QString::fromLatin1("seed %1, %2 exchanges from chapter %3: %4\n")
                  .arg(wishes.seed)
                  .arg(wishes.exchanges)
                  .arg(wishes.from)
                  .arg(QLatin1String(wishes.kind == soak::kAnything ? "any request, any answer"
                                                                    : "a faulty line")));
        for (qint64 chapter = wishes.from; done.exchanges < wishes.exchanges; ++chapter) {
            if (!play(chapter))
                return kWrong;
            if (g_isInterrupted)
                break;
        }
        return summary();
    }

private:
    // False when something differed, which was said.
    bool play(qint64 number)
    {
        const qint64 length = std::min(soak::kExchangesOfChapter, wishes.exchanges - done.exchanges);
        const soak::Chapter chapter =
            soak::playChapter(wishes.kind, wishes.seed, number, length, [this](qint64 count) {
                progress.show(done.exchanges + count);
                return g_isInterrupted == 0;
            });
        if (!chapter.difference.isEmpty()) {
            tellDifference(number, chapter);
            return false;
        }
        done += chapter.tally;
        if (chapter.isWhole) {
            print(QString::fromLatin1("chapter %1: %2 exchanges, digest %3\n")
                      .arg(number)
                      .arg(chapter.tally.exchanges)
                      .arg(QLatin1String(chapter.digest)));
            digest.addData(chapter.digest);
        }
        now = soak::processState();
        if (number == wishes.from)
            warm = now;
        return true;
    }

    void tellDifference(qint64 number, const soak::Chapter &chapter)
    {
        std::fprintf(
            stderr,
            "%ssoak: the driver does not as the model, %lld exchanges after the begin of chapter %lld\n"
            "again: scripts/soak%s --seed %u --from %lld %lld\n",
            qPrintable(chapter.difference), static_cast<long long>(chapter.tally.exchanges),
            static_cast<long long>(number), wishes.kind == soak::kAnything ? " --model" : "", wishes.seed,
            static_cast<long long>(number), static_cast<long long>(chapter.tally.exchanges));
    }

    ExitCode summary()
    {
        const double seconds = progress.seconds();
        print(done.text());
        print(QString::fromLatin1("after the first chapter: %1\nat the end: %2\n")
                  .arg(toString(warm), toString(now)));
        print(QString::fromLatin1("%1 exchanges in %2 s, %3 a second, none other than the model's\n")
                  .arg(done.exchanges)
                  .arg(seconds, 0, 'f', 1)
                  .arg(double(done.exchanges) / seconds, 0, 'f', 0));
        print(QString::fromLatin1("digest of the chapters %1\n").arg(QLatin1String(digest.result().toHex())));
        if (const QString grown = growth(warm, now); !grown.isEmpty()) {
            std::fprintf(stderr, "soak: %s", qPrintable(grown));
            return kWrong;
        }
        return g_isInterrupted ? kInterrupted : kFine;
    }

    Wishes wishes;
    Progress progress;
    soak::Tally done;
    soak::ProcessState warm = {};
    soak::ProcessState now = {};
    QCryptographicHash digest{QCryptographicHash::Md5};
};

// The C library counts as taken what it keeps at hand for its next user. Without that cache, which is chosen
// when a program starts, what is taken is what is in use.
void startWithoutCache(char *argv[])
{
    const char *const name = "GLIBC_TUNABLES";
    if (qEnvironmentVariableIsSet(name))
        return;
    qputenv(name, "glibc.malloc.tcache_count=0");
    execv("/proc/self/exe", argv);
    std::perror("soak: cannot be started again");
}

} // namespace

int main(int argc, char *argv[])
{
    startWithoutCache(argv);
    const QCoreApplication application(argc, argv);
    const std::optional<Wishes> wanted = wishes(application);
    if (!wanted)
        return kUsage;
    std::signal(SIGINT, interrupt);
    return Soak(*wanted).run();
}
