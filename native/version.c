// What a file of the product says of itself: `strings FILE | grep '@(#)'` finds it, and `what FILE`
// on macOS. The build gives name and version.

static const char kVersion[] __attribute__((used)) = "@(#)" ZEL_VERSION;
