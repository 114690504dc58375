// An empty translation unit, so that a module without sources yet still forms a library.
