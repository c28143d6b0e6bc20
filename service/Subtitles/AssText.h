// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/MarkedText.h"

#include <QSet>
#include <QString>

namespace murvo::service {

/// What the header of an ASS or SSA script says of the text of its events.
///
/// A value, made once for a track. An event is as libavformat gives it: "ReadOrder,Layer," and then the
/// fields of the script's Format line from the one after End on.
class AssScript {
  public:
    explicit AssScript(const QString &header = {});

    [[nodiscard]] MarkedText readEvent(QStringView event) const;

  private:
    void takeStyle(const QStringList &format, const QString &style);
    void takeEventFormat(const QStringList &format);

    QSet<QString> _italicStyles;
    qsizetype _styleField = 2;
    qsizetype _textField = 8;
};

} // namespace murvo::service
