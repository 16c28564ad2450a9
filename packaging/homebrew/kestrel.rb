# A formula to build Kestrel from a clone: brew install --HEAD ./packaging/homebrew/kestrel.rb
# It was checked for syntax only; nobody has built it on a Mac yet.
class Kestrel < Formula
  desc "Keeps the computer awake while coding agents work"
  homepage "file://#{File.expand_path("../..", __dir__)}"
  license "MIT"
  head "file://#{File.expand_path("../..", __dir__)}", using: :git

  depends_on "asio" => :build
  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on "nlohmann-json" => :build
  depends_on "fmt"
  depends_on macos: :ventura
  depends_on "qt"
  depends_on "simdjson"
  uses_from_macos "sqlite"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DBUILD_TESTING=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
    # The bundle's programs find each other; a link leads to them.
    programs = prefix.glob("*.app/Contents/MacOS").first
    %w[kestrelctl kestrel-relay].each { |name| bin.install_symlink programs/name }
    bash_completion.install_symlink share/"bash-completion/completions/kestrelctl"
    fish_completion.install_symlink share/"fish/vendor_completions.d/kestrelctl.fish"
  end

  def caveats
    <<~TEXT
      Kestrel.app is in #{opt_prefix}. To have it among the applications:
        ln -s #{opt_prefix}/*.app /Applications
      To stay awake with the lid closed:
        sudo kestrelctl helper install
    TEXT
  end

  test do
    assert_match "kestrelctl", shell_output("#{bin}/kestrelctl --version")
    assert_match "Kestrel is not running", shell_output("#{bin}/kestrelctl status 2>&1", 3)
  end
end
