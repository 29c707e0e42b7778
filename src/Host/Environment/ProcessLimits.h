#pragma once

namespace quaverly::host {

/// Lets this process open as many descriptors as its hard limit allows, up to some ten thousands: a thousand
/// idle connections must not keep an honest one out.
void raiseDescriptorLimit();

}  // namespace quaverly::host
