// What the sample library links: its export must not pass for one of the sample's.
extern "C" [[gnu::visibility("default")]] int sampleBaseAnswer() { return 7; }
