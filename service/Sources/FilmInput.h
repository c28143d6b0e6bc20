// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <memory>

struct AVFormatContext;
struct AVStream;

namespace murvo::service {

/// A film's container opened for reading, closed with this object. Local regular files only, whatever the
/// film refers to. Every call into the container on it returns with an error soon after the question it was
/// opened with says stop. One thread at a time; may be moved.
class FilmInput {
  public:
    /// Asked often, on the thread that reads, from within libavformat: it must be quick and not throw.
    using IsToStop = std::function<bool()>;

    FilmInput() = default;

    [[nodiscard]] explicit operator bool() const { return _context != nullptr; }
    [[nodiscard]] AVFormatContext *get() const { return _context.get(); }
    AVFormatContext *operator->() const { return _context.get(); }
    AVFormatContext &operator*() const { return *_context; }

  private:
    struct Closer {
        void operator()(AVFormatContext *context) const;
    };

    friend FilmInput openFilm(const QString &filmPath, IsToStop isToStop);

    std::unique_ptr<IsToStop> _isToStop; // libavformat keeps its address
    std::unique_ptr<AVFormatContext, Closer> _context;
};

/// Opens the film and reads its headers; no input when it is no readable film or was stopped.
[[nodiscard]] FilmInput openFilm(const QString &filmPath, FilmInput::IsToStop isToStop);

/// What the film says of its stream under that name ("language", "title"); empty when nothing.
[[nodiscard]] QString streamTag(const AVStream &stream, const char *name);

} // namespace murvo::service
