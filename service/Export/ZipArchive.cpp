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
    throw std::runtime_error("the archive cannot be written");
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

} // namespace

void writeZip(const QString &path, const QList<ZipEntry> &entries) {
    int code = 0;
    Archive archive(zip_open(path.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, &code));
    if (!archive)
        fail();
    for (const ZipEntry &entry : entries)
        add(*archive, entry);
    if (zip_close(archive.get()) < 0)
        fail();
    std::ignore = archive.release(); // closing has freed it
}

} // namespace murvo::service
