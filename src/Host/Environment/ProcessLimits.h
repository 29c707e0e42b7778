#pragma once

namespace quaverly::host {

/// Lets this process open as many descriptors as its hard limit allows, up to some ten thousands: a thousand
/// idle connections must not keep an honest one out.
void raiseDescriptorLimit();

/// Has what a decoded picture took go back to the system with the picture, for a process that then idles.
/// Before there are other threads.
void returnLargeMemoryAtOnce();

}  // namespace quaverly::host
