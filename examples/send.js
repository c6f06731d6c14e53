// The script of send.html; page.js has what it shares with receive.html.
(function () {
  "use strict";

  var kChunk = 16384;             // bytes that are read at once
  var kLargestPicture = 1048576;  // bytes of a file that is shown as a picture
  var kText = 49152;              // bytes of another file that are read
  var kLines = 8;                 // of it that are shown

  var plugin = page.plugin;
  var order = page.readOrder({ destination: "incoming", start: false });

  // ---- Choosing -------------------------------------------------------------------------------

  // The platform's dialog. It stays open for as long as the user likes, and the page goes on.
  function choose() {
    var refusal = plugin.runOpenFileDialogAsync("Choose a file to send", false, "", onChosen, true);
    if (refusal) page.fail(page.errorText(refusal));
  }

  function onChosen(reply) {
    if (page.isError(reply)) {
      page.fail(page.errorText(reply));
      return;
    }
    var files = JSON.parse(reply).dataTransfer.files;
    if (files.length === 0) {
      page.show("status", "Nothing was chosen");
      return;
    }
    showFile(files[0]);
    readPreview(files[0], function () {
      askForAnother(files[0]);
      send(files[0]);
    });
  }

  function nameOf(path) { return path.substring(path.lastIndexOf("\\") + 1); }
  function folderOf(path) { return path.substring(0, path.lastIndexOf("\\") + 1); }

  function showFile(file) {
    page.show("name", nameOf(file.name));
    page.show("folder", folderOf(file.name));
    page.show("type", file.type || "unknown");
    page.show("size", page.size(file.size) + " (" + file.size + " bytes)");
    page.show("changed", file.lastModifiedDate || "unknown");
    page.print("chosen: " + nameOf(file.name) + ", " + file.type + ", " + file.size + " bytes");
  }

  // ---- Reading --------------------------------------------------------------------------------

  function isPicture(file) {
    return file.type.indexOf("image/") === 0 && file.size <= kLargestPicture;
  }

  // Reads chunk after chunk, lets the browser work in between, and shows what has come.
  function readPreview(file, done) {
    var wanted = isPicture(file) ? file.size : Math.min(file.size, kText);
    var bytes = "", chunks = 0;
    function next() {
      if (bytes.length === wanted) {
        showPreview(file, bytes);
        page.show("read", page.size(bytes.length) + " read in " + chunks + " chunks");
        page.print("preview: " + bytes.length + " bytes in " + chunks + " chunks");
        done();
        return;
      }
      var reply = plugin.readChunkAsArrayBuffer(file.name, bytes.length,
                                                Math.min(kChunk, wanted - bytes.length));
      // What was read is a data: address; anything else is the words of an error.
      if (reply.indexOf("data:") !== 0) {
        page.fail(page.errorText(reply));
        return;
      }
      bytes += window.atob(reply.substring(reply.indexOf(",") + 1));
      ++chunks;
      window.setTimeout(next, 0);
    }
    next();
  }

  function showPreview(file, bytes) {
    if (isPicture(file)) {
      // The system's own names for two types, which browsers do not all know.
      var type = file.type.replace("x-png", "png").replace("pjpeg", "jpeg");
      page.element("picture").src = "data:" + type + ";base64," + window.btoa(bytes);
    } else {
      page.show("text", readable(bytes).split("\n").slice(0, kLines).join("\n"));
    }
  }

  // The text of UTF-8 bytes, of which the last character may be cut off; of others a dot each where
  // there is nothing to see.
  function readable(bytes) {
    try {
      return decodeURIComponent(window.escape(bytes.replace(/[\xC0-\xFF][\x80-\xBF]{0,2}$/, "")));
    } catch (e) {
      return bytes.substring(0, 64 * kLines).replace(/[^\x20-\x7E]/g, ".").replace(/(.{64})/g, "$1\n");
    }
  }

  // ---- Refusals -------------------------------------------------------------------------------

  // A file beside the chosen one, which the user did not choose: neither to be read nor to be sent.
  function askForAnother(file) {
    var other = folderOf(file.name) + "diary.txt";
    tellRefusal("read", plugin.readAsArrayBuffer(other));
    tellRefusal("send", page.request(sending(other), function () {}));
  }

  function tellRefusal(what, reply) {
    if (!reply || !page.isError(reply)) {
      page.fail("A file that was not chosen was not refused to " + what);
      return;
    }
    // The path within is a path of Windows, unescaped, so this reply is no JSON.
    var words = /"user_message":"(.*)"/.exec(reply);
    page.append("refused", "To " + what + " another file: " + (words ? words[1] : reply));
    page.print("refused to " + what + ": " + reply);
  }

  // ---- Sending --------------------------------------------------------------------------------

  function sending(path) {
    return { direction: "send", paths: [{ source: path }], destination_root: "/" + order.destination };
  }

  function send(file) { page.startTransfer(sending(file.name)); }

  window.onload = function () {
    page.show("destination", "/" + order.destination);
    page.element("choose").onclick = choose;
    if (page.start(["choose"]) && order.start) choose();
  };
}());
