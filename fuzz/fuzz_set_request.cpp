// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Payloads of any bytes that a broker hands on to be written to tags of every type: nothing is written but
// values within the tag's limits, and every answer is JSON.
//
//    input := tag(1) payload

#include "fuzzing.h"
#include "refusal.h"

#include "host/base/failure.h"
#include "host/broker/set_request.h"
#include "host/items/raw_item.h"
#include "host/items/write_guard.h"
#include "host/text/json.h"

#include <vector>

using fuzz::require;
using namespace host;

namespace {

Tag tagNumber(int number)
{
    static const char *const items[] = {"V10.3",    "VB10",         "VW10:i16*4",   "VD10",
                                        "VD10:f32", "VW10",         "VB0:f64",      "VW0:bcd*2",
                                        "VD0:hex",  "VB0:str*8",    "VB0:string*8", "VW10:i16",
                                        "VB10:u64", "VD0:f32:swap", "T37",          "VD4:f32*3"};
    Tag tag(parseItem(QString(items[number % 16]), Notation::Controller));
    tag.name = "tag";
    tag.access = Access::ReadWrite;
    if (number % 32 >= 16 && hasNumbers(tag.item.type)) {
        tag.scaling = {0.1, -40};
        tag.minimum = -40;
        tag.maximum = 3000;
    }
    return tag;
}

void checkAnswer(const QByteArray &answer, const char *result)
{
    const Json json = Json::parse(answer.toStdString(), nullptr, false);
    require(json.is_object() && json["result"] == result, "an answer is JSON");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const int number = input.byte();
    Tag tag = tagNumber(number);
    if (number == 255)
        tag.access = Access::ReadOnly;
    const SetRequest request = {"set", input.rest(), number == 254, {}};
    const std::chrono::system_clock::time_point time;
    try {
        const Assignment assignment = parseSetRequest(tag, request);
        require(number < 254, "what is retained or only to be read is not written");
        require(!assignment.data.isEmpty() && assignment.data.size() <= tag.item.size(),
                "values have room in the tag");
        checkWritable(assignment.tag, assignment.data);
        checkAnswer(doneText(assignment, time), "done");
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
        checkAnswer(refusedText(failure, time), "refused");
        checkAnswer(failedText(failure, time), "failed");
    }
    return 0;
}
