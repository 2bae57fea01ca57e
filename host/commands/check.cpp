// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/filled.h"
#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/commands/plan_options.h"
#include "host/commands/raw_addresses.h"
#include "host/driver/dry_run.h"
#include "host/driver/read_plan.h"
#include "host/items/area.h"
#include "host/items/item.h"
#include "host/items/tag_file.h"
#include "host/items/write_guard.h"
#include "host/output/output.h"
#include "host/polling/poll_plan.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace host {

namespace {

constexpr int kCheckLabelWidth = 12;

struct CheckOptions
{
    QStringList items;
    PlanOptions plan;
};

const Schema kCheckSchema = {"check",
                             1,
                             "items",
                             {"text", "valid", "address", "area", "type", "count", "first", "last",
                              "requests", "frame", "writable", "writeError", "access", "min", "max", "error",
                              "nearest"}};

const char kCheckFooter[] = R"(

Nothing is sent and no port is opened: the plug-in shows what it would send. How much memory there is
depends on the controller's model, which answers to an address beyond it with a refusal.

At the end stand the requests that read or watch would make for all items together, with the
time that a poll of them takes, the controller's answer taken for 10 ms. When a tag file names
intervals, then also which of them can be kept at which rate.

The exit code is 0 when all of them are valid.)";

QString elementName(const Address &address)
{
    if (address.kind == AddressKind::Bit)
        return "bits";
    if (address.isObject())
        return "by number";
    return address.elementWidth == 4 ? "double words" : address.elementWidth == 2 ? "words" : "bytes";
}

// What the plug-in would send for an item. Only the first request of a long item is tried: the others differ
// in number and count.
struct ItemCheck
{
    int requests;
    QByteArray frame;
    std::optional<Failure> writeRefusal; // why it cannot be written
};

ItemCheck checkOf(const Item &item, const DryRun &frames)
{
    const std::vector<PlannedRequest> requests = planRead(item).requests;
    return {int(requests.size()), frames.ofRead(requests.front().command, item.station).first(),
            frames.writeRefusal(item)};
}

// What the tag's file says of writing.
void addTagLimits(Json &record, const Tag &tag)
{
    if (tag.access != Access::Unsaid)
        record["access"] = tag.access == Access::ReadOnly ? "ro" : "rw";
    if (tag.minimum)
        record["min"] = *tag.minimum;
    if (tag.maximum)
        record["max"] = *tag.maximum;
}

Json validRecord(const QString &text, const Tag &tag, const ItemCheck &found)
{
    const Item &item = tag.item;
    Json record = {{"text", jsonText(text)},
                   {"valid", true},
                   {"address", jsonText(item.address.text())},
                   {"area", jsonText(areaOf(item.address.prefix).name)},
                   {"type", jsonText(item.typeText())},
                   {"count", item.count},
                   {"first", jsonText(firstAddress(item.address).text())},
                   {"last", jsonText(lastAddress(item.address).text())},
                   {"requests", found.requests},
                   {"frame", found.frame.toHex(' ').toStdString()},
                   {"writable", !found.writeRefusal}};
    if (found.writeRefusal)
        record["writeError"] = jsonText(found.writeRefusal->text());
    addTagLimits(record, tag);
    return record;
}

QString labelled(const QString &label, const QString &text)
{
    return "  " + label.leftJustified(kCheckLabelWidth) + ' ' + text;
}

// Whether the item can be written: as the driver has it, then as the tag's file does.
QString writeText(const Tag &tag, const ItemCheck &found)
{
    if (found.writeRefusal)
        return found.writeRefusal->text();
    if (tag.access == Access::ReadOnly)
        return filled("possible, but the access is ro in %1", tag.definedAt);
    const QString limits = limitsText(tag);
    return limits.isEmpty() ? "possible" : "possible, " + limits;
}

QString validText(const QString &text, const Tag &tag, const ItemCheck &found)
{
    const Item &item = tag.item;
    const Address &address = item.address;
    const QString values = filled("%1 %2", item.count, item.typeText());
    const QString limits = firstAddress(address).text() + " to " + lastAddress(address).text();
    const QString frame = QString::fromLatin1(found.frame.toHex(' '));
    const bool isLong = found.requests > 1;
    const QString head = isTagReference(text) ? text + ' ' + item.place() : text;
    return QStringList({head, labelled("valid", values),
                        labelled("area", areaOf(address.prefix).name + ", " + elementName(address)),
                        labelled("limits", limits + ", less in most models"),
                        labelled("read", isLong ? QString("%1 requests, the first:").arg(found.requests)
                                                : QString("one request:")),
                        labelled(QString(), frame), labelled("write", writeText(tag, found))})
        .join('\n');
}

Json invalidRecord(const QString &text, const Failure &failure)
{
    Json record = {{"text", jsonText(text)},
                   {"valid", false},
                   {"error", jsonText(failure.text())},
                   {"cause", jsonText(causeWord(failure.cause()))}};
    record["nearest"] = Json::array();
    for (const QString &address : nearestAddresses(addressIn(text)))
        if (address != text)
            record["nearest"].push_back(jsonText(address));
    return record;
}

QString invalidText(const QString &text, const Failure &failure)
{
    return QStringList({text, labelled("not valid", failure.text()), labelled("instead", failure.hint())})
        .join('\n');
}

class CheckCommand
{
public:
    CheckCommand(const Options &options, const PlanLimits &limits_)
        : frames(options), limits(limits_), output(options, kCheckSchema)
    {
    }

    // Checks an item, or all tags of a tag file.
    void check(const QString &text);

    // Ends the data, and fails when something was wrong.
    void finish();

private:
    template <typename Check> void attempt(const QString &text, const Check &check);
    void checkTag(const QString &text, const Tag &tag);
    void showPlan();
    void checkFile(const QString &reference);

    DryRun frames;
    PlanLimits limits;
    Output output;
    std::vector<Tag> right;
    int wrong = 0;
    Outcome outcome;
};

template <typename Check> void CheckCommand::attempt(const QString &text, const Check &check)
{
    try {
        check();
    } catch (const Failure &failure) {
        if (failure.isFinal())
            throw;
        ++wrong;
        outcome.keep(failure.code());
        output.write(invalidRecord(text, failure), invalidText(text, failure));
    }
}

void CheckCommand::checkTag(const QString &text, const Tag &tag)
{
    const ItemCheck found = checkOf(tag.item, frames);
    output.write(validRecord(text, tag, found), validText(text, tag, found));
    right.push_back(tag);
}

// Tells how all items that are right would be read together.
void CheckCommand::showPlan()
{
    if (right.empty())
        return;
    const PollPlan plan(right, frames.line(), limits);
    output.setField("plan", plan.json());
    output.writeText("all together");
    for (const auto &[label, text] : plan.lines())
        output.writeText(labelled(label, text));
}

void CheckCommand::checkFile(const QString &reference)
{
    Outcome lines; // of the file
    for (const Tag &tag : parseTags({reference}, lines)) {
        const QString text = reference + ':' + tag.name;
        attempt(text, [&] { checkTag(text, tag); });
    }
    if (!lines.isSuccess())
        throw brokenTagFile();
}

void CheckCommand::check(const QString &text)
{
    attempt(text, [&] {
        if (!isTagReference(text))
            checkTag(text, parseItem(text));
        else if (text.contains(':'))
            checkTag(text, findTag(text));
        else
            checkFile(text);
    });
}

void CheckCommand::finish()
{
    showPlan();
    output.finish();
    if (wrong > 0)
        throw Failure(outcome.code(), filled("%1 of %2 not valid", wrong, int(right.size()) + wrong),
                      "the data tell what could be meant instead");
}

int checkAll(const Options &options, const CheckOptions &own)
{
    refuseRawAddresses(options, "check");
    CheckCommand command(options, own.plan.limits());
    for (const QString &text : own.items)
        command.check(text);
    command.finish();
    return int(ExitCode::Success);
}

} // namespace

void declareCheck(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<CheckOptions>();
    CLI::App *check =
        addCommand(app, line, "check", "Tell whether addresses are right, and the bytes for them",
                   [own](const Options &options) { return checkAll(options, *own); });
    addItems(*check, own->items, "ADDRESS[:TYPE][*COUNT][@STATION] or @FILE[:NAME], as for read");
    addPlanOptions(*check, own->plan);
    setFooter(*check, QString(kTypesFooter) + kCheckFooter,
              {"s7ppi check VW100*2 VW110:i16", "s7ppi check @press-tags.csv"});
}

} // namespace host
