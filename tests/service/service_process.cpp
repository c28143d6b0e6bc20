// SPDX-License-Identifier: GPL-3.0-or-later
// service_process FOLDER: runs the service on a store until its input ends, and says its address in a line.

#include "service/EmbeddedService.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    QString error;
    const auto service = murvo::service::EmbeddedService::start(application.arguments().value(1), error);
    if (!service) {
        std::fprintf(stderr, "%s\n", error.toUtf8().constData());
        return 1;
    }
    std::printf("%s\n", service->baseUrl().toUtf8().constData());
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
