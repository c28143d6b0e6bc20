// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace murvo::service {

/// The text of a cue while its markup is read: characters, each upright or italic, and line breaks.
///
/// Used by one reader on one thread. It knows no subtitle format.
class MarkedText {
  public:
    void append(QStringView text);
    void breakLine() { append(u"\n"); }
    void setItalic(bool italic) { _italic = italic; }
    [[nodiscard]] bool isItalic() const { return _italic; }

    /// Gives a cue its lines and italics: white space is one space, byte order marks and control characters
    /// are gone, lines without a visible character are left out, and what no viewer could read is cut.
    void tidyInto(Cue &cue) const;

  private:
    QString _text;
    std::vector<bool> _italics; ///< one for each unit of _text
    bool _italic = false;
};

} // namespace murvo::service
