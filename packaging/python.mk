.PHONY: python
# The Python package with its library beside it, in build/python (for PYTHONPATH) and as a zip.
python: setup
	@cmake $(RELEASE_BUILD) -DKERNO_BENCH=OFF >/dev/null
	@cmake --build build/release -j $(JOBS) --target kerno_shared
	@$(PYTHON) packaging/make_python_zip.py build/release/src/api/libkerno.so.1 build/python build/packages
