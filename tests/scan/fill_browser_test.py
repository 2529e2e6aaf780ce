#!/usr/bin/env python3
"""A filled real page, submitted by a real browser.

Usage: fill_browser_test.py FILLPAGE MAKEKEYDB PAGE KEYS EXPECTED [EMULATOR]

Fills PAGE with fillpage from the readable key list KEYS, giving it an address
that puts its form action on a loopback server; opens the filled page from disk
in headless Chromium, submits its form there and checks what the server got
against EXPECTED, a JSON file: the "path" posted to, the "charset" the values
arrive in, the "fields" (names and values, compared exactly; with "exact" no
other field may arrive) and the names that must be "absent".
Everything it starts is bounded in time and stopped before it exits.
"""
import fcntl
import http.server
import json
import os
import select
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse

DEADLINE_SECONDS = 90


class Receiver(http.server.BaseHTTPRequestHandler):
    posts = []
    arrived = threading.Event()

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", "0")))
        Receiver.posts.append((self.path, body))
        self.send_response(200)
        self.end_headers()
        Receiver.arrived.set()

    def log_message(self, *args):
        pass


class DevTools:
    """The browser's DevTools protocol over its pipe: JSON messages ended by NUL."""

    def __init__(self, write_fd, read_fd, deadline):
        self.write_fd, self.read_fd, self.deadline = write_fd, read_fd, deadline
        self.pending, self.events, self.last_id = b"", [], 0

    def _receive(self):
        while b"\0" not in self.pending:
            left = self.deadline - time.monotonic()
            if left <= 0 or not select.select([self.read_fd], [], [], left)[0]:
                raise TimeoutError("the browser did not answer in time")
            chunk = os.read(self.read_fd, 65536)
            if not chunk:
                raise EOFError("the browser closed its pipe")
            self.pending += chunk
        message, self.pending = self.pending.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, params=None, session=None):
        self.last_id += 1
        message = {"id": self.last_id, "method": method, "params": params or {}}
        if session:
            message["sessionId"] = session
        os.write(self.write_fd, json.dumps(message).encode() + b"\0")
        while True:
            reply = self._receive()
            if reply.get("id") == self.last_id:
                if "error" in reply:
                    raise RuntimeError(f"{method}: {reply['error']}")
                return reply.get("result", {})
            self.events.append(reply)

    def wait_for(self, method, session):
        while True:
            for i, event in enumerate(self.events):
                if event.get("method") == method and event.get("sessionId") == session:
                    return self.events.pop(i)
            self.events.append(self._receive())


def high_descriptor(fd):
    """A copy above 4, so that placing the pipe on 3 and 4 cannot close it."""
    high = fcntl.fcntl(fd, fcntl.F_DUPFD_CLOEXEC, 10)
    os.close(fd)
    return high


def submit_in_browser(filled_page, profile, deadline, extra_flags=()):
    to_browser_r, to_browser_w = os.pipe()
    from_browser_r, from_browser_w = os.pipe()
    to_browser_r, from_browser_w = high_descriptor(to_browser_r), high_descriptor(from_browser_w)
    flags = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             "--remote-debugging-pipe", f"--user-data-dir={profile}", *extra_flags, "about:blank"]
    log = open(os.path.join(profile, "browser.log"), "wb")
    # The browser reads commands on descriptor 3 and writes replies on 4.
    browser = subprocess.Popen(
        ["bash", "-c", f'exec "$0" "$@" 3<&{to_browser_r} 4>&{from_browser_w} {to_browser_r}<&- {from_browser_w}>&-',
         shutil.which("chromium")] + flags,
        pass_fds=(to_browser_r, from_browser_w), stdout=log, stderr=log)
    os.close(to_browser_r)
    os.close(from_browser_w)
    try:
        tools = DevTools(to_browser_w, from_browser_r, deadline)
        target = tools.call("Target.createTarget", {"url": "about:blank"})["targetId"]
        session = tools.call("Target.attachToTarget", {"targetId": target, "flatten": True})["sessionId"]
        tools.call("Page.enable", session=session)
        tools.call("Page.navigate", {"url": "file://" + filled_page}, session)
        tools.wait_for("Page.loadEventFired", session)
        # submit() as a script would: inputs of the page that no key fills (password,
        # e-mail) are marked required, and nobody types into them here.
        tools.call("Runtime.evaluate", {"expression": "HTMLFormElement.prototype.submit.call(document.forms[0])"},
                   session)
        if not Receiver.arrived.wait(max(0.0, deadline - time.monotonic())):
            raise TimeoutError("the server received no form")
        tools.call("Browser.close")
    finally:
        try:
            browser.wait(timeout=10)
        except subprocess.TimeoutExpired:
            browser.kill()
            browser.wait()
        os.close(to_browser_w)
        os.close(from_browser_r)
        log.close()


def received_failures(path, body, expected):
    """What differs between the post the server received and the expected one."""
    print("received", path, body.decode("latin-1"))
    failures = [f"posted to {path}"] if path != expected["path"] else []
    try:
        pairs = urllib.parse.parse_qs(body.decode("ascii"), keep_blank_values=True, encoding=expected["charset"],
                                      errors="strict")
    except UnicodeError as error:
        return failures + [f"the values are not in {expected['charset']}: {error}"]
    fields = expected["fields"]
    if expected.get("exact") and set(pairs) != set(fields):
        failures.append(f"expected the fields {sorted(fields)}, got {sorted(pairs)}")
    failures += [f"{name}: expected {value!r}, got {pairs.get(name)}"
                 for name, value in fields.items() if pairs.get(name) != [value]]
    failures += [f"{name} was sent" for name in expected.get("absent", []) if name in pairs]
    return failures


def main(fillpage, makekeydb, page, key_list, expected_file, emulator=None):
    if not shutil.which("chromium"):
        sys.exit("chromium is not installed (scripts/setup.sh installs it)")
    deadline = time.monotonic() + DEADLINE_SECONDS
    run = [emulator] if emulator else []
    server = http.server.HTTPServer(("127.0.0.1", 0), Receiver)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    work = tempfile.mkdtemp(prefix="fill_browser_")
    try:
        keys, filled, profile = (os.path.join(work, name) for name in ("keys.dat", "filled.htm", "profile"))
        subprocess.run(run + [makekeydb, key_list, keys], check=True, timeout=60, stdout=subprocess.DEVNULL)
        with open(expected_file, encoding="utf-8") as f:
            expected = json.load(f)
        address = f"127.0.0.1:{server.server_address[1]}{expected['path']}"
        subprocess.run(run + [fillpage, page, address, keys, filled, "--current-key", "0"], check=True, timeout=60)
        os.mkdir(profile)
        submit_in_browser(filled, profile, deadline)
    finally:
        server.shutdown()
        server.server_close()
        shutil.rmtree(work, ignore_errors=True)

    failures = received_failures(*Receiver.posts[0], expected)
    for failure in failures:
        print("FAIL:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    if len(sys.argv) not in (6, 7):
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
