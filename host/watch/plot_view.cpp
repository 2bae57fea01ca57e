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

constexpr double kLeastSpan = 1; // seconds; the picture grows from there to its whole span

// Seconds from one picture to the next: answers come faster than anyone can see, and without any the
// curves go on all the same.
constexpr double kLeastPlotPause = 0.1;
constexpr double kLongestPlotPause = 0.5;

bool isDrawable(const Tag &tag)
{
    return tag.item.type != ValueType::Hex && !isText(tag.item.type);
}

bool hasName(const Tag &tag, const QString &name)
{
    return tag.label() == name || tag.item.address.text() == name;
}

QString keyOf(const Tag &tag)
{
    return QStringList({tag.label(), tag.item.place(), tag.item.typeText(), QString::number(tag.item.count)})
        .join('\n');
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
        const bool isBit = tag.item.type == ValueType::Bool;
        for (int i = 0; i < tag.item.count; ++i)
            curves.push_back(
                {tag.item.count > 1 ? valueLabel(tag, i) : tag.label(), QString(), PlotHistory(span), isBit});
    }
}

void PlotView::answered(const Watch & /*watch*/, const WatchedItem &item, const Reading &reading,
                        WatchNews /*news*/)
{
    lastMessage.clear();
    const int first = firstCurves.value(keyOf(item.tag), -1);
    for (size_t i = 0; first >= 0 && i < reading.values.size(); ++i) {
        Curve &curve = curves.at(size_t(first) + i);
        curve.value = valueLines(item.tag, item.values.mid(int(i), 1)).front().text;
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
    if (screen.takeResize() || now() - drawnAt > kLongestPlotPause)
        draw();
}

void PlotView::tell(const Watch & /*watch*/, const QString &text)
{
    lastMessage = text;
    draw();
}

void PlotView::leave(const Watch &watch)
{
    screen.leave(pictureBelow(lastHeadLines(title, watch, screen.columns())));
}

void PlotView::drawSometimes()
{
    if (drawnAt < 0 || now() - drawnAt > kLeastPlotPause)
        draw();
}

void PlotView::draw()
{
    screen.takeResize();
    screen.show(pictureBelow(headLines(title, QString(), lastMessage, screen.columns())));
}

QStringList PlotView::pictureBelow(const QStringList &head)
{
    drawnAt = now();
    std::vector<PlotCurve> shown;
    for (const Curve &curve : curves)
        shown.push_back({curve.label, curve.value, curve.history.samples(), curve.isBit});
    return head + plotLines(shown, drawnAt, std::clamp(drawnAt, kLeastSpan, span), screen.columns(),
                            screen.rows() - int(head.size()), glyphs);
}

} // namespace host
