#!/usr/bin/env python3
"""A small HTTP server on 127.0.0.1 that misbehaves on purpose, for the download tests.

Usage: http_test_server.py SOURCE_FILE
Prints the port it listens on (an ephemeral one) as the first line of stdout, then
serves the bytes of SOURCE_FILE under these paths:

  /file/NAME     the file, with Range answered by 206 and Content-Range
  /drop/NAME     the first request gets half the body, then the connection is cut;
                 later requests are served like /file
  /norange/NAME  like /drop, but later requests ignore Range and send the whole file (200)
  /short/NAME    every answer announces the full length of what it covers but sends half
  /stall/NAME    headers, then silence
  /redirect/NAME 302 to /file/NAME
  anything else  404
"""
import http.server
import os
import sys
import threading
import time

SOURCE = open(sys.argv[1], "rb").read()
seen = set()
seen_lock = threading.Lock()


def first_time(path):
    with seen_lock:
        if path in seen:
            return False
        seen.add(path)
        return True


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *args):
        pass

    def requested_start(self):
        header = self.headers.get("Range", "")
        if header.startswith("bytes=") and header.endswith("-"):
            return int(header[6:-1])
        return 0

    def send_body(self, start, honour_range, fraction=1.0):
        if not honour_range:
            start = 0
        body = SOURCE[start:]
        if start > 0:
            self.send_response(206)
            self.send_header("Content-Range", "bytes %d-%d/%d" % (start, len(SOURCE) - 1, len(SOURCE)))
        else:
            self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        sent = body[: int(len(body) * fraction)]
        self.wfile.write(sent)
        self.wfile.flush()
        if fraction < 1.0:
            self.close_connection = True
            self.connection.shutdown(2)

    def do_GET(self):
        kind = self.path.split("/")[1] if self.path.count("/") >= 2 else ""
        start = self.requested_start()
        if kind == "file":
            self.send_body(start, True)
        elif kind in ("drop", "norange"):
            if first_time(self.path):
                self.send_body(0, True, 0.5)
            else:
                self.send_body(start, kind == "drop")
        elif kind == "short":
            self.send_body(start, True, 0.5)
        elif kind == "stall":
            self.send_response(200)
            self.send_header("Content-Length", str(len(SOURCE)))
            self.end_headers()
            self.wfile.flush()
            time.sleep(30)
        elif kind == "redirect":
            self.send_response(302)
            self.send_header("Location", "/file/" + self.path.split("/", 2)[2])
            self.send_header("Content-Length", "0")
            self.end_headers()
        else:
            self.send_response(404)
            self.send_header("Content-Length", "9")
            self.end_headers()
            self.wfile.write(b"not found")


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        pass  # a client that hangs up mid-body is what these tests are about


server = Server(("127.0.0.1", 0), Handler)
server.daemon_threads = True
print(server.server_address[1], flush=True)
# Ends with the test: stdin closes when the test process goes away.
threading.Thread(target=lambda: (sys.stdin.read(), os._exit(0)), daemon=True).start()
server.serve_forever()
