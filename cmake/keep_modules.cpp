/// Linked into sanitized programs in place of the system's: modules stay loaded to the end. What a graphics
/// driver or a plug-in still holds then can be reached, so it is no leak, and a report names the module it
/// comes from.
extern "C" int dlclose(void*) {
  return 0;
}
