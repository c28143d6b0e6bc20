// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

/// Puts the calling thread behind others for processor and disk: the film that plays comes first. Where that
/// is not allowed it changes nothing.
void giveWayToOthers();

} // namespace murvo::service
