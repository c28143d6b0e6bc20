// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/ZipArchive.h"

#include <memory>
#include <stdexcept>

#include <zip.h>

namespace murvo::service {

namespace {

struct SourceFree {
    void operator()(zip_source_t *source) const { zip_source_free(source); }
};
struct ArchiveDiscard {
    void operator()(zip_t *archive) const { zip_discard(archive); }
};
using Source = std::unique_ptr<zip_source_t, SourceFree>;
using Archive = std::unique_ptr<zip_t, ArchiveDiscard>;

[[noreturn]] void fail() {
    throw std::runtime_error("the archive cannot be made");
}

// The content must live until the archive is closed.
void add(zip_t &archive, const ZipEntry &entry) {
    Source source(zip_source_buffer(&archive, entry.content.constData(),
                                    static_cast<zip_uint64_t>(entry.content.size()), 0));
    const zip_int64_t place =
        source ? zip_file_add(&archive, entry.name.toUtf8().constData(), source.get(), ZIP_FL_ENC_UTF_8) : -1;
    if (place < 0)
        fail();
    std::ignore = source.release(); // the archive's from here on
    const zip_int32_t method = entry.isToBePacked ? ZIP_CM_DEFLATE : ZIP_CM_STORE;
    if (zip_set_file_compression(&archive, static_cast<zip_uint64_t>(place), method, 0) < 0)
        fail();
}

QByteArray contentOf(zip_source_t &file) {
    zip_stat_t facts;
    zip_stat_init(&facts);
    if (zip_source_open(&file) < 0)
        fail();
    QByteArray bytes;
    if (zip_source_stat(&file, &facts) == 0 && (facts.valid & ZIP_STAT_SIZE) != 0) {
        bytes.resize(static_cast<qsizetype>(facts.size));
        if (zip_source_read(&file, bytes.data(), facts.size) != static_cast<zip_int64_t>(facts.size))
            bytes.clear();
    }
    zip_source_close(&file);
    if (bytes.isEmpty())
        fail();
    return bytes;
}

} // namespace

QByteArray zipArchive(const QList<ZipEntry> &entries) {
    zip_error_t error;
    zip_error_init(&error);
    const Source file(zip_source_buffer_create(nullptr, 0, 0, &error));
    if (!file)
        fail();
    Archive archive(zip_open_from_source(file.get(), ZIP_TRUNCATE, &error));
    zip_error_fini(&error);
    if (!archive)
        fail();
    zip_source_keep(file.get()); // the archive gives up a share of its own
    for (const ZipEntry &entry : entries)
        add(*archive, entry);
    if (zip_close(archive.get()) < 0)
        fail();
    std::ignore = archive.release(); // closing has freed it
    return contentOf(*file);
}

} // namespace murvo::service
