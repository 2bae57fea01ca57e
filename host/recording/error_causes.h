// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Counts errors by their texts. A driver may put numbers into them, so that no two are the same: the rare
// ones are dropped where there are too many, and only counted together.

#ifndef HOST_RECORDING_ERROR_CAUSES_H
#define HOST_RECORDING_ERROR_CAUSES_H

#include <QHash>
#include <QString>

#include <vector>

namespace host {

struct ErrorCause
{
    QString text;
    int count;
    std::vector<int> items; // the first of those that it happened to, by their numbers
    bool hasMoreItems;
};

// Returns as much of a text as a page has room for.
QString shortened(const QString &text);

class ErrorCauses
{
public:
    void add(const QString &text, int item);

    int count() const { return total; } // of all errors

    // The commonest of the causes, at most so many; equal ones in the order in which they came. Where there
    // were thousands, one that was rare for long may have lost some of its count.
    std::vector<ErrorCause> commonest(size_t most) const;

private:
    void dropRareOnes();

    std::vector<ErrorCause> causes;
    QHash<QString, int> places; // in causes, by text
    int total = 0;
};

} // namespace host

#endif
