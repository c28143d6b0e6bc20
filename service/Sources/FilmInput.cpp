// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/FilmInput.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

extern "C" {
#include <libavformat/avformat.h>
}

namespace murvo::service {

namespace {

int interrupts(void *isToStop) noexcept {
    return (*static_cast<FilmInput::IsToStop *>(isToStop))() ? 1 : 0;
}

} // namespace

void FilmInput::Closer::operator()(AVFormatContext *context) const {
    avformat_close_input(&context);
}

FilmInput openFilm(const QString &filmPath, FilmInput::IsToStop isToStop) {
    FilmInput input;
    if (filmPath.isEmpty() || !QFileInfo(filmPath).isFile())
        return input;
    AVFormatContext *raw = avformat_alloc_context();
    if (raw == nullptr)
        return input;
    input._isToStop = std::make_unique<FilmInput::IsToStop>(std::move(isToStop));
    raw->interrupt_callback = {&interrupts, input._isToStop.get()};
    // A playlist handed in as a film must not make the service reach out: files only.
    AVDictionary *options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    const QByteArray url = QByteArrayLiteral("file:") + QFile::encodeName(filmPath);
    const int opened = avformat_open_input(&raw, url.constData(), nullptr, &options);
    av_dict_free(&options);
    if (opened >= 0) // a failed open has freed the context
        input._context.reset(raw);
    return input;
}

QString streamTag(const AVStream &stream, const char *name) {
    const AVDictionaryEntry *entry = av_dict_get(stream.metadata, name, nullptr, 0);
    return entry == nullptr ? QString() : QString::fromUtf8(entry->value);
}

} // namespace murvo::service
