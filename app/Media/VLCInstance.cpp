// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/VLCInstance.h"

#include "app/Media/VLCHandles.h"
#include "app/Platform/Log.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <vector>

namespace murvo {

struct VLCInstance::Impl {
    VLCHandle<libvlc_instance_t> instance;
};

namespace {

void logMessage(void *, int level, const libvlc_log_t *, const char *format, va_list arguments) {
    std::array<char, 1024> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    const QString line = singleLine(QString::fromUtf8(text.data()));
    if (level >= LIBVLC_ERROR)
        qCWarning(logVlc).noquote() << line;
    else if (level >= LIBVLC_WARNING)
        qCInfo(logVlc).noquote() << line;
    else
        qCDebug(logVlc).noquote() << line;
}

bool hasSoundServer() {
    if (!qEnvironmentVariableIsEmpty("PULSE_SERVER"))
        return true;
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtimeFolder.isEmpty() && QFile::exists(runtimeFolder + QStringLiteral("/pulse/native"));
}

bool hasSoundDevice() {
    return QDir(QStringLiteral("/dev/snd")).exists(QStringLiteral("controlC0"));
}

std::vector<const char *> instanceArguments() {
    std::vector<const char *> arguments = {
        "--verbose=-1",             // FFmpeg inside the library writes to stderr past the log otherwise
        "--no-video-title-show",    // no file name over the picture
        "--no-sub-autodetect-file", // the page draws the subtitles
        "--no-interact",            // no questions of its own
        "--no-lua",                 // no scripts that look things up online
        "--no-metadata-network-access",
    };
    // A sound output that finds no device prints thousands of lines.
    if (!hasSoundServer() && !hasSoundDevice())
        arguments.push_back("--aout=dummy");
    return arguments;
}

} // namespace

VLCInstance::VLCInstance()
    : _impl(std::make_unique<Impl>()) {
    const std::vector<const char *> arguments = instanceArguments();
    _impl->instance.reset(libvlc_new(static_cast<int>(arguments.size()), arguments.data()));
    if (_impl->instance) {
        libvlc_log_set(_impl->instance.get(), logMessage, nullptr);
        libvlc_set_user_agent(_impl->instance.get(), "Murvo", "Murvo");
    }
}

VLCInstance::~VLCInstance() {
    if (_impl->instance)
        libvlc_log_unset(_impl->instance.get());
}

bool VLCInstance::isUsable() const {
    return _impl->instance != nullptr;
}

libvlc_instance_t *VLCInstance::handle() const {
    return _impl->instance.get();
}

} // namespace murvo
