// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/live_value.h"

#include "simulator/text/named_entry.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <regex>
#include <stdexcept>

namespace sim {

// How users write a kind of live value.
struct LiveValue::Form
{
    Kind kind;
    const char *name;
    const char *arguments; // as the user is told of them
    std::regex pattern;    // of what follows the name: two numbers, then number and unit of the time
};

namespace {

constexpr double kPi = 3.14159265358979323846;

[[noreturn]] void refuse(const std::string &text)
{
    throw std::invalid_argument(text);
}

double numberIn(const std::ssub_match &text, double otherwise)
{
    return text.length() > 0 ? std::stod(text) : otherwise;
}

double secondsIn(const std::string &unit)
{
    if (unit == "ms")
        return 0.001;
    if (unit == "min")
        return 60;
    return unit == "h" ? 3600 : 1;
}

double inSeconds(Time time)
{
    return std::chrono::duration<double>(time).count();
}

} // namespace

// The numbers of digits are bounded, as std::stod throws at a number that is too large for a double.
const std::vector<LiveValue::Form> &LiveValue::forms()
{
    const std::string number = "([-+]?[0-9]{1,10}(?:\\.[0-9]{1,9})?)";
    const std::string time = "([0-9]{1,9}(?:\\.[0-9]{1,9})?)(ms|s|min|h)";
    const std::string rate = "([0-9]{1,9}(?:\\.[0-9]{1,9})?)?(ms|s|min|h)";
    static const std::vector<Form> all = {
        {Kind::Ramp, "ramp", ":FROM..TO/TIME, as ramp:0..1000/10s",
         std::regex(":" + number + "\\.\\." + number + "/" + time)},
        {Kind::Sine, "sine", ":MIDDLE+-AMPLITUDE/TIME, as sine:500+-400/30s",
         std::regex(":" + number + "(?:\\+-|\u00b1)" + number + "/" + time)},
        {Kind::Clock, "clock", ", without arguments", std::regex("()()()()")},
        {Kind::Counter, "counter", ":STEP/TIME, as counter:1/s", std::regex(":" + number + "()/" + rate)},
        {Kind::Blink, "blink", ":TIME, as blink:1s", std::regex(":()()" + time)},
    };
    return all;
}

LiveValue::LiveValue(const std::string &place, const std::string &course)
    : placeText(place), courseText(course), target(parsePlace(place))
{
    const size_t colon = std::min(course.find(':'), course.size());
    const Form &form = entryNamed(course.substr(0, colon), forms(), "kind of live value");
    const std::string arguments = course.substr(colon);
    std::smatch parts;
    if (!std::regex_match(arguments, parts, form.pattern))
        refuse('"' + course + "\": give " + form.name + form.arguments);
    kind = form.kind;
    first = numberIn(parts[1], 0);
    second = numberIn(parts[2], 0);
    period = numberIn(parts[3], 1) * secondsIn(parts[4]);
    check();
}

void LiveValue::check() const
{
    const bool wantsBit = kind == Kind::Blink;
    if (wantsBit != (target.width == 1))
        refuse(placeText + ": " + (wantsBit ? "only a bit can blink" : "a bit can only blink"));
    if (kind == Kind::Clock && (target.width != 32 || target.isFloat))
        refuse(placeText + ": clock needs a double word");
    if (period <= 0)
        refuse('"' + courseText + "\": the time must be longer than 0");
    if (kind == Kind::Counter && first == 0.0)
        refuse('"' + courseText + "\": the step must not be 0");
    const bool sine = kind == Kind::Sine;
    const double amplitude = std::fabs(second);
    const double lowest = sine ? first - amplitude : first;
    const double highest = sine ? first + amplitude : second;
    if (!holds(target, lowest) || !holds(target, highest))
        refuse('"' + courseText + "\" goes beyond what " + placeText + " can hold");
}

void LiveValue::store(Memory &memory, Time now, Time start) const
{
    storeNumber(memory, target,
                kind == Kind::Clock ? std::floor(inSeconds(now)) : at(inSeconds(now - start)));
}

double LiveValue::at(double seconds) const
{
    const double phase = std::fmod(seconds, period) / period;
    switch (kind) {
    case Kind::Ramp:
        return first + (second - first) * phase;
    case Kind::Sine:
        return first + second * std::sin(2 * kPi * phase);
    case Kind::Counter: {
        const double count = std::floor(first * seconds / period);
        return target.isFloat ? count : std::fmod(count, std::ldexp(1.0, static_cast<int>(target.width)));
    }
    default:
        return phase < 0.5 ? 1 : 0;
    }
}

std::vector<LiveValue> parseLiveValues(const std::string &text)
{
    if (text == "demo") {
        return {{"VW200", "ramp:0..1000/10s"},
                {"VW202", "sine:500+-400/30s"},
                {"VD204:f32", "sine:21.5+-2.5/60s"},
                {"VD208", "clock"},
                {"V212.0", "blink:1s"},
                {"MB10", "ramp:255..0/5s"},
                {"AIW0", "sine:16000+-8000/20s"},
                {"AQW0", "ramp:-32000..32000/60s"},
                {"SM0.5", "blink:1s"},
                {"T40", "counter:10/s"},
                {"C6", "counter:1/s"},
                {"HC1", "counter:1000/s"}};
    }
    const size_t equals = text.find('=');
    if (equals == std::string::npos)
        refuse('"' + text + "\" is neither PLACE=KIND:ARGUMENTS, as VW100=ramp:0..1000/10s, nor demo");
    return {LiveValue(text.substr(0, equals), text.substr(equals + 1))};
}

} // namespace sim
