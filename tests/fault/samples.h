// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One exchange of every kind, undisturbed: what the host asks, what the controller answers and what the
// host then has.

#ifndef TESTS_FAULT_SAMPLES_H
#define TESTS_FAULT_SAMPLES_H

#include "scene.h"

struct Sample
{
    const char *name;
    bool isWrite;
    int dataType;
    const char *address;
    int count;
    const char *data;   // to write, hex
    const char *item;   // parameter block and data of the controller's answer, hex
    int errors;         // error class and code of the answer
    int refusal;        // function code of a negative frame instead of the acknowledgement
    const char *result; // of the read, hex
    const char *reason; // of the failure; null: the request is good

    Reply reply() const;
    HostRequest request() const;

    // The request once; twice, so that what is left over from the first shows in the second.
    Scene scene() const;
    Scene sceneOfTwo() const;

    // Whether it ended as it does when nothing goes wrong.
    bool isMetBy(const Outcome &outcome) const;

    // What the controller says: its acknowledgement and its answer, or its refusal. Counted from 1.
    int replies() const { return refusal ? 1 : 2; }
    QByteArray replyBytes(int number) const;
};

// What is wrong with the outcome of a scene of two requests, the first of them disturbed: it must be as
// the model says and fail or be right, and the second must not notice. Empty when nothing is.
QString complaintAbout(const Sample &sample, const Scene &scene, const Comparison &comparison);

QList<Sample> samples();
Sample sample(const char *name);

// A column "name" with a row for every sample, or for every sample of a kind; and the sample of the current
// row.
void addSampleRows();
void addAnsweredRows(); // the controller does not refuse at once
void addGoodReadRows();
void addWriteRows();
Sample currentSample();

#endif
