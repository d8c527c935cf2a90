# The Debian packages, checked by lintian, in build/packages.
.PHONY: setup-packages deb try-deb
setup-packages:
	@sh tools/setup.sh packages

deb: setup setup-packages
	@sh tools/make_deb.sh

# The same packages in a fresh Debian 12: installed, run, upgraded, removed. Needs root.
try-deb: deb
	@$(PYTHON) tools/try_deb.py
