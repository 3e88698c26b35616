"""Recalculates a workbook in LibreOffice, which this program starts and ends; needs Debian's python3-uno.

usage: recalculate.py WORKBOOK TIMES
"""
import os
import subprocess
import sys
import tempfile
import time

import uno
from com.sun.star.beans import PropertyValue

path, times = os.path.abspath(sys.argv[1]), int(sys.argv[2])
pipe = f"pipe,name=compare{os.getpid()};urp;"
with tempfile.TemporaryDirectory() as profile:
    office = subprocess.Popen(["soffice", "--headless", "--norestore", f"--accept={pipe}",
                               f"-env:UserInstallation=file://{profile}"])
    local = uno.getComponentContext()
    resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
    for _ in range(300):
        try:
            context = resolver.resolve(f"uno:{pipe}StarOffice.ComponentContext")
            break
        except Exception:  # not listening yet
            time.sleep(0.2)
    else:
        office.kill()
        sys.exit("LibreOffice does not answer")
    desktop = context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
    hidden = PropertyValue()
    hidden.Name, hidden.Value = "Hidden", True
    document = desktop.loadComponentFromURL(f"file://{path}", "_blank", 0, (hidden,))
    for _ in range(times):
        document.calculateAll()
    document.close(True)
    try:
        desktop.terminate()
    except Exception:  # the connection ends with the program
        pass
    office.wait()
