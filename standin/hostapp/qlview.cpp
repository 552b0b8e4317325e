// A viewer: a library whose mere presence, and handle, is what others look for.
