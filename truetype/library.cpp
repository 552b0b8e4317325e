// The library holds nothing yet; this source gives it a file to archive.
