// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/plot_view.h"

#include "host/base/failure.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <vector>

#include <langinfo.h>

namespace host {

namespace {

constexpr int kTitleRows = 2; // the title, and a line that is mostly blank

// Seconds from one picture to the next: answers come faster than anyone can see, and without any the
// curves go on all the same.
constexpr double kLeastPause = 0.1;
constexpr double kLongestPause = 0.5;

bool isDrawable(const Tag &tag)
{
    return tag.item.type != ValueType::Hex && tag.item.type != ValueType::Str;
}

bool hasName(const Tag &tag, const QString &name)
{
    return tag.label() == name || tag.item.address.text() == name;
}

QString keyOf(const Tag &tag)
{
    return tag.label() + '\n' + tag.item.place() + '\n' + typeName(tag.item.type);
}

QStringList labelsOf(const std::vector<Tag> &tags)
{
    QStringList labels;
    for (const Tag &tag : tags)
        labels << tag.label();
    return labels;
}

// The finer braille dots, in a locale that has such characters.
PlotGlyphs localGlyphs()
{
    return QString(nl_langinfo(CODESET)) == "UTF-8" ? PlotGlyphs::Braille : PlotGlyphs::Ascii;
}

} // namespace

std::vector<Tag> drawableTags(const std::vector<Tag> &tags, const QStringList &names)
{
    for (const QString &name : names)
        if (std::none_of(tags.begin(), tags.end(), [&](const Tag &tag) { return hasName(tag, name); }))
            throw Failure(ExitCode::Usage, '"' + name + "\" is none of the watched items",
                          "choose from " + labelsOf(tags).join(", "));
    std::vector<Tag> drawable;
    for (const Tag &tag : tags) {
        const bool isChosen =
            names.isEmpty() ||
            std::any_of(names.begin(), names.end(), [&](const QString &name) { return hasName(tag, name); });
        if (isChosen && isDrawable(tag))
            drawable.push_back(tag);
    }
    if (drawable.empty())
        throw Failure(ExitCode::Usage, "texts and hexadecimal digits cannot be drawn",
                      "watch them without --plot, or as numbers: :u8, :u16, ...");
    return drawable;
}

PlotView::PlotView(const QString &title_, const std::vector<Tag> &tags, double span_)
    : title(title_), span(span_), glyphs(localGlyphs())
{
    clock.start();
    for (const Tag &tag : tags) {
        firstCurves[keyOf(tag)] = int(curves.size());
        for (int i = 0; i < tag.item.count; ++i) {
            const QString number = tag.item.count > 1 ? QString("[%1]").arg(i) : QString();
            curves.push_back({tag.label() + number, QString(), PlotHistory(span)});
        }
    }
}

void PlotView::answered(const Watch & /*watch*/, const WatchedItem &item, const Reading &reading,
                        WatchNews /*news*/)
{
    lastMessage.clear();
    const int first = firstCurves.value(keyOf(item.tag), -1);
    for (size_t i = 0; first >= 0 && i < reading.values.size(); ++i) {
        Curve &curve = curves.at(size_t(first) + i);
        curve.value = shownText(item.tag, {reading.values.at(i)});
        const std::optional<double> number = shownNumber(item.tag, reading.values.at(i));
        if (number)
            curve.history.add(now(), *number);
        else
            curve.history.addGap(now());
    }
    drawSometimes();
}

void PlotView::failed(const Watch & /*watch*/, const WatchedItem &item, const Failure &failure,
                      bool /*isNews*/)
{
    lastMessage = item.tag.label() + ": " + failure.text();
    const int first = firstCurves.value(keyOf(item.tag), -1);
    for (int i = 0; first >= 0 && i < item.tag.item.count; ++i) {
        Curve &curve = curves.at(size_t(first) + size_t(i));
        curve.history.addGap(now());
        curve.value = "no answer";
    }
    drawSometimes();
}

void PlotView::idle(const Watch & /*watch*/)
{
    if (screen.takeResize() || now() - drawnAt > kLongestPause)
        draw();
}

void PlotView::tell(const Watch & /*watch*/, const QString &text)
{
    lastMessage = text;
    draw();
}

void PlotView::drawSometimes()
{
    if (drawnAt < 0 || now() - drawnAt > kLeastPause)
        draw();
}

void PlotView::draw()
{
    screen.takeResize();
    drawnAt = now();
    std::vector<PlotCurve> shown;
    for (const Curve &curve : curves)
        shown.push_back({curve.label, curve.value, curve.history.samples()});
    const int columns = screen.columns();
    QStringList lines = {title.left(columns), lastMessage.left(columns)};
    lines << plotLines(shown, drawnAt, span, columns, screen.rows() - kTitleRows, glyphs);
    screen.show(lines);
}

} // namespace host
