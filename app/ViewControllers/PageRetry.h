// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

namespace murvo {

class WebViewController;

/// Loads a page again that has not come, or whose process has died, after pauses that double from half a
/// second to half a minute, until it comes. It does not know which page that is. Main thread only.
class PageRetry : public QObject {
    Q_OBJECT

  public:
    /// load starts the page's loading, or does nothing when nobody wants the page any more; false puts it off
    /// for another pause. The controller is borrowed and owns this.
    PageRetry(WebViewController &page, std::function<bool()> load);

  private:
    void schedule();

    std::chrono::milliseconds _pause; // before the next try
    QTimer _next;
};

} // namespace murvo
