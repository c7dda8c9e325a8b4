// A shared library named like a loader module that makes no plug-in record.
extern "C" int sxNoRecordValue() {
  return 42;
}
