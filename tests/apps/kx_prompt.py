#!/usr/bin/env python3
"""The console's prompt driven through a pseudo-terminal, as a person types at it: a command, a
name completed with Tab, help, a mistake that leaves the prompt going, Python lines and back, exit;
then the history file
in the user directory holds what was typed, for the next session.

    kx_prompt.py <kx> <content dir>
"""
import os
import pty
import select
import sys
import tempfile
import time


def read_until(fd, needle, seconds=20.0):
    seen = b""
    end = time.time() + seconds
    while needle not in seen and time.time() < end:
        ready, _, _ = select.select([fd], [], [], 0.2)
        if ready:
            try:
                chunk = os.read(fd, 4096)
            except OSError:
                break
            if not chunk:
                break
            seen += chunk
    return seen


def main():
    kx, content = sys.argv[1], sys.argv[2]
    problems = []
    with tempfile.TemporaryDirectory() as user:
        env = dict(os.environ, KX_USER_DIR=user, KX_CONTENT_DIR=content, TERM="dumb")
        pid, fd = pty.fork()
        if pid == 0:
            os.execve(kx, [kx], env)
        steps = [
            (b'Geometry.DotProduct {"x":1,"y":2,"z":3} {"x":4,"y":5,"z":6}\n', b"32"),
            (b"Matrix.Iden\t\n", b"[[1,0,0,0],[0,1,0,0],[0,0,1,0],[0,0,0,1]]"),
            (b"help Geometry.PlaneCreate\n", b"Create a plane from properties"),
            (b"Geometry.DotProdct {} {}\n", b"did you mean Geometry.DotProduct"),
            (b'Geometry.DotProduct {"x":1} {}\n', b"Invalid json for vector"),
            (b"python\n", b"Python lines", b"py> "),
            (b"trvGeometry.dotProduct({'x': 1, 'y': 2, 'z': 3}, TarvelBasicPythonTypes.Point3(4, 5, 6))\n", b"32", b"py> "),
            (b"1/0\n", b"<prompt>:1: ZeroDivisionError: division by zero", b"py> "),
            (b"exit()\n", b"kx> "),
            (b"Matrix.Identity\n", b"[[1,0,0,0],[0,1,0,0],[0,0,1,0],[0,0,0,1]]"),
        ]
        read_until(fd, b"kx> ")
        transcript = b""
        for typed, expected, *prompt in steps:
            prompt = prompt[0] if prompt else b"kx> "
            os.write(fd, typed)
            answer = read_until(fd, expected)
            transcript += answer
            if expected not in answer:
                problems.append("no %r after typing %r" % (expected, typed))
            if prompt not in answer.split(expected)[-1]:
                read_until(fd, prompt, 2.0)
        os.write(fd, b"exit\n")
        _, status = os.waitpid(pid, 0)
        if os.waitstatus_to_exitcode(status) != 0:
            problems.append("exit status %d" % os.waitstatus_to_exitcode(status))
        history = os.path.join(user, "kx_history")
        text = open(history, encoding="utf-8", errors="replace").read() if os.path.exists(history) else ""
        for line in ("Geometry.DotProduct", "Matrix.Identity", "help"):
            if line not in text:
                problems.append("%s is not in the history file" % line)
        sys.stdout.write(transcript.decode("utf-8", "replace"))
    for problem in problems:
        print("FAIL:", problem)
    print("PASS" if not problems else "")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
