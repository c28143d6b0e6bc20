// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewControllers/PageRetry.h"

#include "app/ViewControllers/WebViewController.h"

#include <algorithm>

namespace murvo {

namespace {
constexpr std::chrono::milliseconds firstPause{500};
constexpr std::chrono::milliseconds longestPause{30'000};
} // namespace

PageRetry::PageRetry(WebViewController &page, std::function<bool()> load)
    : QObject(&page)
    , _pause(firstPause) {
    _next.setSingleShot(true);
    connect(&_next, &QTimer::timeout, this, [this, &page, load = std::move(load)] {
        if (!page.isLoading() && !load()) // a load under way will tell how it ends
            _next.start(_pause);
    });
    // page -> this
    connect(&page, &WebViewController::progressStarted, &_next, &QTimer::stop);
    connect(&page, &WebViewController::progressFinished, this, [this] {
        _next.stop();
        _pause = firstPause;
    });
    connect(&page, &WebViewController::progressFailed, this, &PageRetry::schedule);
    connect(&page, &WebViewController::pageDied, this, &PageRetry::schedule);
}

void PageRetry::schedule() {
    _next.start(_pause);
    _pause = std::min(_pause * 2, longestPause);
}

} // namespace murvo
