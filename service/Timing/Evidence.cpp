// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/Evidence.h"

#include <utility>

namespace murvo::service {

namespace {

// Typesetting and sung lines come as many cues at one time: they would outvote the dialogue.
constexpr double oneEventMs = 80;
constexpr qint64 longestFilmMs = 12LL * 3600 * 1000;

std::size_t framesIn(double ms) {
    return static_cast<std::size_t>(std::max(1.0, std::round(ms / Evidence::fineFrameMs)));
}

std::vector<double> runningSum(const std::vector<float> &values) {
    std::vector<double> sums(values.size() + 1, 0.0);
    for (std::size_t i = 0; i < values.size(); ++i)
        sums[i + 1] = sums[i] + static_cast<double>(values[i]);
    return sums;
}

double meanOf(const std::vector<double> &sums, std::size_t from, std::size_t to) {
    return to > from ? (sums[to] - sums[from]) / static_cast<double>(to - from) : 0;
}

/// Takes away what a stretch of the film has on average, so that a lively one attracts cues no more than a
/// quiet one.
void centre(std::vector<float> &values, double windowMs) {
    const std::vector<double> sums = runningSum(values);
    const std::size_t reach = framesIn(windowMs / 2);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t from = i > reach ? i - reach : 0;
        const std::size_t to = std::min(values.size(), i + reach + 1);
        values[i] -= static_cast<float>(meanOf(sums, from, to));
    }
}

/// Turns "spoken here" into what a cue gains by starting before it and ending behind it.
void addPresence(Evidence &evidence, std::vector<float> presence, double weightPerSecond, double windowMs) {
    centre(presence, windowMs);
    const double weight = weightPerSecond * evidence.frameMs / 1000;
    double sum = 0;
    for (std::size_t i = 0; i < presence.size(); ++i) {
        evidence.atStart[i] -= static_cast<float>(sum);
        evidence.atEnd[i] += static_cast<float>(sum);
        sum += weight * static_cast<double>(presence[i]);
    }
}

/// A hill of that height, flat at its top, that ends reachMs from its centre.
void addHill(std::vector<float> &values, double centreMs, double reachMs, double height) {
    const double frameMs = Evidence::fineFrameMs;
    const auto frames = static_cast<std::ptrdiff_t>(values.size());
    const auto from = static_cast<std::ptrdiff_t>(std::ceil((centreMs - reachMs) / frameMs));
    const auto to = static_cast<std::ptrdiff_t>(std::floor((centreMs + reachMs) / frameMs));
    for (std::ptrdiff_t frame = std::max<std::ptrdiff_t>(from, 0); frame <= std::min(to, frames - 1);
         ++frame) {
        const double distance = (static_cast<double>(frame) * frameMs - centreMs) / reachMs;
        const double share = 1 - distance * distance;
        values[static_cast<std::size_t>(frame)] += static_cast<float>(height * share * share);
    }
}

/// The same translation has the same times to a frame or two, another one starts its lines somewhere near.
std::vector<float> nearness(const std::vector<Span> &reference, double Span::*event, double nearMs,
                            std::size_t frames) {
    constexpr double sameMs = 100;
    std::vector<float> values(frames, 0.0F);
    for (const Span &span : reference) {
        addHill(values, span.*event, sameMs, 0.5);
        addHill(values, span.*event, nearMs, 1);
    }
    centre(values, 60'000);
    return values;
}

void add(std::vector<float> &to, const std::vector<float> &values, double weight) {
    for (std::size_t i = 0; i < to.size(); ++i)
        to[i] += static_cast<float>(weight) * values[i];
}

/// How much more is spoken behind each frame than before it.
std::vector<float> rise(const std::vector<float> &likelihood, double reachMs) {
    const std::vector<double> sums = runningSum(likelihood);
    const std::size_t reach = framesIn(reachMs);
    std::vector<float> values(likelihood.size(), 0.0F);
    for (std::size_t i = reach; i + reach <= likelihood.size(); ++i)
        values[i] = static_cast<float>(meanOf(sums, i, i + reach) - meanOf(sums, i - reach, i));
    return values;
}

std::vector<float> onFineFrames(const SpeechActivity &speech) {
    const int frameMs = std::max(1, speech.frameMs);
    const auto given = static_cast<qint64>(speech.likelihood.size());
    const qint64 frames = std::min(given * frameMs, longestFilmMs) / Evidence::fineFrameMs;
    std::vector<float> values(static_cast<std::size_t>(std::max<qint64>(frames, 1)));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const qint64 frame = static_cast<qint64>(i) * Evidence::fineFrameMs / frameMs;
        values[i] = speech.likelihood[static_cast<std::size_t>(std::min(frame, given - 1))];
    }
    return values;
}

} // namespace

Evidence Evidence::coarser(int factor) const {
    Evidence result;
    result.frameMs = frameMs * factor;
    const auto step = static_cast<std::size_t>(factor);
    const auto mean = [step](const std::vector<float> &values, std::size_t centreFrame) {
        // Around the frame's own time, or coarse and fine times would differ by half a frame.
        const std::size_t from = centreFrame > step / 2 ? centreFrame - step / 2 : 0;
        const std::size_t to = std::min(values.size(), centreFrame + step / 2 + 1);
        float sum = 0;
        for (std::size_t i = from; i < to; ++i)
            sum += values[i];
        return sum / static_cast<float>(to - from);
    };
    for (std::size_t i = 0; i < atStart.size(); i += step) {
        result.atStart.push_back(mean(atStart, i));
        result.atEnd.push_back(mean(atEnd, i));
    }
    return result;
}

std::vector<Span> spansOf(const QList<Cue> &cues) {
    std::vector<Span> spans;
    spans.reserve(static_cast<std::size_t>(cues.size()));
    for (const Cue &cue : cues) {
        if (cue.startMs >= 0 && cue.endMs > cue.startMs && cue.endMs < longestFilmMs)
            spans.push_back({static_cast<double>(cue.startMs), static_cast<double>(cue.endMs)});
    }
    std::sort(spans.begin(), spans.end(), [](const Span &a, const Span &b) { return a.startMs < b.startMs; });
    std::vector<Span> apart;
    for (const Span &span : spans) {
        if (!apart.empty() && span.startMs - apart.back().startMs < oneEventMs)
            apart.back().endMs = std::max(apart.back().endMs, span.endMs);
        else
            apart.push_back(span);
    }
    return apart;
}

FilmEvidence evidenceOf(const std::vector<Span> &reference) {
    double lastMs = 0;
    for (const Span &span : reference)
        lastMs = std::max(lastMs, span.endMs);
    const std::size_t frames = framesIn(lastMs + 5'000);
    std::vector<float> presence(frames, 0.0F);
    for (const Span &span : reference) {
        const std::size_t from = std::min(frames, framesIn(span.startMs));
        const std::size_t to = std::min(frames, framesIn(span.endMs));
        std::fill(presence.begin() + static_cast<std::ptrdiff_t>(from),
                  presence.begin() + static_cast<std::ptrdiff_t>(std::max(from, to)), 1.0F);
    }
    FilmEvidence evidence;
    evidence.wide.atStart = nearness(reference, &Span::startMs, 500, frames);
    evidence.wide.atEnd.assign(frames, 0.0F);
    add(evidence.wide.atEnd, nearness(reference, &Span::endMs, 500, frames), 0.5);
    addPresence(evidence.wide, std::move(presence), 0.5, 60'000);
    evidence.fine.atStart = nearness(reference, &Span::startMs, 400, frames);
    evidence.fine.atEnd.assign(frames, 0.0F);
    add(evidence.fine.atEnd, nearness(reference, &Span::endMs, 400, frames), 0.2);
    return evidence;
}

FilmEvidence evidenceOf(const SpeechActivity &speech) {
    std::vector<float> likelihood = onFineFrames(speech);
    const std::vector<float> nothing(likelihood.size(), 0.0F);
    const std::vector<float> rise350 = rise(likelihood, 350);
    FilmEvidence evidence{{.atStart = nothing, .atEnd = nothing}, {.atStart = nothing, .atEnd = nothing}};
    // Lines stay on the screen when the voice has ended: their ends say less than their starts.
    add(evidence.wide.atStart, rise350, 1.2);
    add(evidence.wide.atStart, rise(likelihood, 120), 0.5);
    add(evidence.wide.atEnd, rise350, -0.5);
    add(evidence.fine.atStart, rise(likelihood, 220), 1);
    add(evidence.fine.atStart, rise(likelihood, 80), 0.5);
    addPresence(evidence.wide, std::move(likelihood), 0.6, 30'000);
    return evidence;
}

} // namespace murvo::service
