#!/usr/bin/env python3
"""Scan HTML end to end, with real parts only.

Usage: scan_end_to_end_test.py HARNESS KEYS FORM WINE_ENV BUILD_DIR [https]

Serves FORM from 127.0.0.1:80 and opens it in Wine's Internet Explorer; runs
HARNESS (the program's main window under Wine), which presses "Scan HTML",
answers the prompt of the one field no key answers and sees the filled page
shown in Wine's browser; then headless Chromium submits the filled page and the
server checks that it received exactly the keys' values and the prompted answer.

With "https" the form is served from https://localhost/ with the test authority's
certificate (scripts/test-ca.sh) and a stand-in window shows its address, since
Wine's browser shows no HTTPS page; the filled page posts back over HTTPS, and
Chromium is told to accept that one certificate by its public key's hash.
"""
import base64
import http.server
import os
import queue
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse

here = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [here, os.path.join(here, "..", "..", "scripts")]
import fill_browser_test as browser  # noqa: E402  (the Chromium driver)
import sample_site  # noqa: E402  (the HTTPS server with the test certificate)

DEADLINE_SECONDS = 150
ADDRESS = "http://127.0.0.1/order/form.htm"
SECURE_ADDRESS = "https://localhost/order/form.htm"
TLS_DIR = sample_site.TLS_DIR
EXPECTED = {
    "firstname": "John",
    "lastname": "Smith",
    "email": "john.smith@example.com",
    "street": "12 Market Street",
    "city": "Springfield",
    "zip": "12345",
    "country": "US",  # names arrive as the page writes them
    "referrer": "+1 555 0100",  # the prompt's answer: the Phone key
}


class Site(browser.Receiver):
    form = b""

    def do_GET(self):
        self.send_response(200)
        self.send_header("Content-Type", "text/html")
        self.send_header("Content-Length", str(len(Site.form)))
        self.end_headers()
        self.wfile.write(Site.form)


def public_key_hash(certificate):
    """The certificate's public key as --ignore-certificate-errors-spki-list wants it."""
    key = subprocess.run(["openssl", "x509", "-in", certificate, "-noout", "-pubkey"], capture_output=True,
                         check=True).stdout
    der = subprocess.run(["openssl", "pkey", "-pubin", "-outform", "der"], input=key, capture_output=True,
                         check=True).stdout
    digest = subprocess.run(["openssl", "dgst", "-sha256", "-binary"], input=der, capture_output=True,
                            check=True).stdout
    return base64.b64encode(digest).decode()


def windows_path(path):
    return "Z:" + path.replace("/", "\\")


def main(harness, keys, form, wine_env, build_dir, mode="http"):
    deadline = time.monotonic() + DEADLINE_SECONDS
    secure = mode == "https"
    with open(form, "rb") as f:
        Site.form = f.read()
    server = sample_site.https_server(Site) if secure else http.server.HTTPServer(("127.0.0.1", 80), Site)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    wine = ["bash", "-c", f'. "{wine_env}" "{build_dir}" && exec wine "$@"', "wine"]
    work = tempfile.mkdtemp(prefix="scan_e2e_")
    done = os.path.join(work, "done")
    address = SECURE_ADDRESS if secure else ADDRESS
    ie = None if secure else subprocess.Popen(wine + ["iexplore", address], stdout=subprocess.DEVNULL,
                                              stderr=subprocess.DEVNULL)
    case = "ScanHtmlFillsAnHttpsPageShownInAStandInBrowser" if secure else "ScanHtmlFillsTheFormShownInWinesBrowser"
    browser_flags = [f"--ignore-certificate-errors-spki-list={public_key_hash(os.path.join(TLS_DIR, 'localhost.crt'))}"
                     ] if secure else []
    env = dict(os.environ, QB_E2E_KEYS=windows_path(keys), QB_E2E_ADDRESS=address, QB_E2E_DONE=windows_path(done))
    program = subprocess.Popen(wine + [harness, f"--gtest_filter=EndToEnd.{case}"], stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, env=env, text=True, errors="replace")
    failures, output = [], []
    lines = queue.Queue()
    # Read on a thread: the program's output is awaited only until the deadline.
    threading.Thread(target=lambda: [lines.put(line) for line in program.stdout] + [lines.put(None)],
                     daemon=True).start()
    try:
        filled = None
        while filled is None:
            try:
                line = lines.get(timeout=max(0.1, deadline - time.monotonic()))
            except queue.Empty:
                failures.append("the program took too long")
                break
            if line is None:
                break
            output.append(line)
            if line.startswith("FILLED "):
                filled = line[len("FILLED "):].strip()
        if filled:
            unix = subprocess.run(wine + ["winepath", "-u", filled], capture_output=True, text=True,
                                  timeout=30).stdout.strip()
            profile = os.path.join(work, "profile")
            os.mkdir(profile)
            browser.submit_in_browser(unix, profile, deadline, browser_flags)
        else:
            failures.append("the program wrote no filled page")
        open(done, "w").close()
        try:
            if program.wait(timeout=max(1, deadline - time.monotonic())) != 0:
                failures.append("the program's run failed")
        except subprocess.TimeoutExpired:
            failures.append("the program did not end")
        while not lines.empty():
            line = lines.get()
            if line is not None:
                output.append(line)
    finally:
        for p in (program, ie):
            if p and p.poll() is None:
                p.kill()
                p.wait()
        server.shutdown()
        server.server_close()
    print("".join(output))

    if Site.posts:
        path, body = Site.posts[0]
        print("received", path, body.decode("latin-1"))
        pairs = urllib.parse.parse_qs(body.decode("ascii"), keep_blank_values=True, encoding="latin-1")
        if path != "/order/submit":
            failures.append(f"posted to {path}")
        if pairs != {name: [value] for name, value in EXPECTED.items()}:
            failures.append(f"expected {EXPECTED}, got {pairs}")
    elif not failures:
        failures.append("nothing was posted")
    for failure in failures:
        print("FAIL:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    if len(sys.argv) not in (6, 7):
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
