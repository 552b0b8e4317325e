// A viewer. It exports nothing: the module only checks that it is loaded, and uses its handle.
