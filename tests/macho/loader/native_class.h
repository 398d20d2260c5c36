// A native class for bundles to send messages to.
#pragma once

namespace tests {

/// Defines the class LoaderSample. Its methods are class methods, with results of every kind, all
/// of them known numbers; "raise" raises an NSException named "Sample".
void defineLoaderSample();

}  // namespace tests
